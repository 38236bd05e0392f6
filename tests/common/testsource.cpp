#include "testsource.h"

KvTriggerIndication TestSource::triggerIndication(quint32 dataId) const
{
    switch (dataId) {
    case KvTriggerIndication::triggerIn1Id:
        return current().triggerIn1;
    case KvTriggerIndication::triggerIn2Id:
        return current().triggerIn2;
    default:
        return KvTriggerIndication();
    }
}
