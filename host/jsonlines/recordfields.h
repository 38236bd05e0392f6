#pragma once

#include "recordmember.h"

#include <kvreceiverrecords.h>
#include <kvtriggerindication.h>
#include <kvutctime.h>

#include <QtGlobal>

#include <limits>
#include <string_view>

/**
 * The integer members of the records that a recording holds as JSON objects:
 * the name of each member in the file, the range its type allows, and how to
 * store and load it. The reader and the generator both follow these tables, so
 * a name or a width is written down once.
 */
namespace RecordFields {

template <typename Record>
struct Field
{
    /** A literal: data() is the name as a C string too. */
    std::string_view name;
    qint64 minimum;
    qint64 maximum;
    void (*store)(Record &record, qint64 value);
    qint64 (*load)(const Record &record);
};

/** The entry for @p member, its range taken from the member's own type. */
template <auto member>
constexpr Field<typename RecordMember::Of<decltype(member)>::RecordType>
field(std::string_view name)
{
    using Type = typename RecordMember::Of<decltype(member)>::MemberType;
    return {name, qint64(std::numeric_limits<Type>::min()),
            qint64(std::numeric_limits<Type>::max()), &RecordMember::store<member>,
            &RecordMember::load<member>};
}

inline constexpr Field<KvUtcTime> utcTime[] = {
    field<&KvUtcTime::nano>("nano"),     field<&KvUtcTime::year>("year"),
    field<&KvUtcTime::month>("month"),   field<&KvUtcTime::day>("day"),
    field<&KvUtcTime::hour>("hour"),     field<&KvUtcTime::minute>("minute"),
    field<&KvUtcTime::second>("second"), field<&KvUtcTime::valid>("valid"),
};

inline constexpr Field<KvTriggerIndication> trigger[] = {
    field<&KvTriggerIndication::line>("line"),
    field<&KvTriggerIndication::polarity>("polarity"),
    field<&KvTriggerIndication::timestamp>("timestamp"),
    field<&KvTriggerIndication::frameNumber>("frameNumber"),
};

inline constexpr Field<KvGpsSolution> gpsSolution[] = {
    field<&KvGpsSolution::iTOW>("iTOW"),     field<&KvGpsSolution::fTOW>("fTOW"),
    field<&KvGpsSolution::week>("week"),     field<&KvGpsSolution::gpsFix>("gpsFix"),
    field<&KvGpsSolution::flags>("flags"),   field<&KvGpsSolution::ecefX>("ecefX"),
    field<&KvGpsSolution::ecefY>("ecefY"),   field<&KvGpsSolution::ecefZ>("ecefZ"),
    field<&KvGpsSolution::pAcc>("pAcc"),     field<&KvGpsSolution::ecefVX>("ecefVX"),
    field<&KvGpsSolution::ecefVY>("ecefVY"), field<&KvGpsSolution::ecefVZ>("ecefVZ"),
    field<&KvGpsSolution::sAcc>("sAcc"),     field<&KvGpsSolution::pDOP>("pDOP"),
    field<&KvGpsSolution::numSV>("numSV"),
};

inline constexpr Field<KvGpsDop> gpsDop[] = {
    field<&KvGpsDop::iTOW>("iTOW"), field<&KvGpsDop::gDOP>("gDOP"), field<&KvGpsDop::pDOP>("pDOP"),
    field<&KvGpsDop::tDOP>("tDOP"), field<&KvGpsDop::vDOP>("vDOP"), field<&KvGpsDop::hDOP>("hDOP"),
    field<&KvGpsDop::nDOP>("nDOP"), field<&KvGpsDop::eDOP>("eDOP"),
};

inline constexpr Field<KvGpsUtcTime> gpsUtcTime[] = {
    field<&KvGpsUtcTime::iTOW>("iTOW"),   field<&KvGpsUtcTime::tAcc>("tAcc"),
    field<&KvGpsUtcTime::nano>("nano"),   field<&KvGpsUtcTime::year>("year"),
    field<&KvGpsUtcTime::month>("month"), field<&KvGpsUtcTime::day>("day"),
    field<&KvGpsUtcTime::hour>("hour"),   field<&KvGpsUtcTime::min>("min"),
    field<&KvGpsUtcTime::sec>("sec"),     field<&KvGpsUtcTime::valid>("valid"),
};

inline constexpr Field<KvGpsSatelliteInfo> gpsSatellites[] = {
    field<&KvGpsSatelliteInfo::iTOW>("iTOW"),
    field<&KvGpsSatelliteInfo::numCh>("numCh"),
};

inline constexpr Field<KvGpsChannel> gpsChannel[] = {
    field<&KvGpsChannel::svid>("svid"),
    field<&KvGpsChannel::quality>("quality"),
};

inline constexpr Field<KvGnssPvt> gnssPvt[] = {
    field<&KvGnssPvt::iTOW>("iTOW"),       field<&KvGnssPvt::year>("year"),
    field<&KvGnssPvt::month>("month"),     field<&KvGnssPvt::day>("day"),
    field<&KvGnssPvt::hour>("hour"),       field<&KvGnssPvt::min>("min"),
    field<&KvGnssPvt::sec>("sec"),         field<&KvGnssPvt::valid>("valid"),
    field<&KvGnssPvt::tAcc>("tAcc"),       field<&KvGnssPvt::nano>("nano"),
    field<&KvGnssPvt::fixType>("fixType"), field<&KvGnssPvt::flags>("flags"),
    field<&KvGnssPvt::numSV>("numSV"),     field<&KvGnssPvt::lon>("lon"),
    field<&KvGnssPvt::lat>("lat"),         field<&KvGnssPvt::height>("height"),
    field<&KvGnssPvt::hMSL>("hMSL"),       field<&KvGnssPvt::hAcc>("hAcc"),
    field<&KvGnssPvt::vAcc>("vAcc"),       field<&KvGnssPvt::velN>("velN"),
    field<&KvGnssPvt::velE>("velE"),       field<&KvGnssPvt::velD>("velD"),
    field<&KvGnssPvt::gSpeed>("gSpeed"),   field<&KvGnssPvt::headMot>("headMot"),
    field<&KvGnssPvt::sAcc>("sAcc"),       field<&KvGnssPvt::headAcc>("headAcc"),
    field<&KvGnssPvt::headVeh>("headVeh"), field<&KvGnssPvt::gDOP>("gDOP"),
    field<&KvGnssPvt::pDOP>("pDOP"),       field<&KvGnssPvt::tDOP>("tDOP"),
    field<&KvGnssPvt::vDOP>("vDOP"),       field<&KvGnssPvt::hDOP>("hDOP"),
    field<&KvGnssPvt::nDOP>("nDOP"),       field<&KvGnssPvt::eDOP>("eDOP"),
};

inline constexpr Field<KvGnssSatelliteInfo> gnssSatellites[] = {
    field<&KvGnssSatelliteInfo::iTOW>("iTOW"),
    field<&KvGnssSatelliteInfo::numSvs>("numSvs"),
};

inline constexpr Field<KvGnssSatellite> gnssSatellite[] = {
    field<&KvGnssSatellite::gnssId>("gnssId"),
    field<&KvGnssSatellite::svId>("svId"),
    field<&KvGnssSatellite::cno>("cno"),
    field<&KvGnssSatellite::flags>("flags"),
};

/** Name of the list of channels in "gpsSatellites" and of satellites in "gnssSatellites". */
inline constexpr std::string_view gpsChannelList = "channels";
inline constexpr std::string_view gnssSatelliteList = "satellites";

} // namespace RecordFields
