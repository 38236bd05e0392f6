#include "testsource.h"

KvTriggerIndication TestSource::triggerIndication(quint32 dataId) const
{
    switch (dataId) {
    case 0x4810:
        return sample.triggerIn1;
    case 0x4820:
        return sample.triggerIn2;
    default:
        return KvTriggerIndication();
    }
}
