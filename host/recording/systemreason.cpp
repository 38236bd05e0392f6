#include "systemreason.h"

#include <cstring>

QString systemReason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}
