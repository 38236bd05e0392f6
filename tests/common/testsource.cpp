#include "testsource.h"

KvTriggerIndication TestSource::triggerIndication(quint32 dataId) const
{
    switch (dataId) {
    case 0x4810:
        return current().triggerIn1;
    case 0x4820:
        return current().triggerIn2;
    default:
        return KvTriggerIndication();
    }
}
