#pragma once

#include <QtGlobal>

/**
 * A member of a record as a value of its own: what record and type a member
 * pointer names, and how to store and load it as a 64-bit integer, in the
 * member's own width and sign. The tables of the JSON Lines names and the
 * layouts of the UBX messages are made of these.
 */
namespace RecordMember {

template <typename Pointer>
struct Of;

template <typename Record, typename Type>
struct Of<Type Record::*>
{
    using RecordType = Record;
    using MemberType = Type;
};

template <auto member>
void store(typename Of<decltype(member)>::RecordType &record, qint64 value)
{
    record.*member = static_cast<typename Of<decltype(member)>::MemberType>(value);
}

template <auto member>
qint64 load(const typename Of<decltype(member)>::RecordType &record)
{
    return static_cast<qint64>(record.*member);
}

} // namespace RecordMember
