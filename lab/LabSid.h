// The 72-byte record of a security identifier.
#ifndef TARNLAB_SID_H
#define TARNLAB_SID_H

#include <initializer_list>
#include <string>

#include "LabBytes.h"

namespace TarnLab::Sid {

inline constexpr std::size_t size = 72;
inline constexpr std::size_t revision = 4, count = 5, authority = 6, subAuthorities = 12;
inline constexpr unsigned most = 15;  // of the sub-authorities

/// What a kernel would find wrong with the record; empty when nothing.
std::string fault(ConstBytes sid);

/// "S-1-5-21-7"; "no sid" for a record with a fault.
std::string text(ConstBytes sid);

/// The sid of an authority below 2^16 and its sub-authorities.
ByteVector make(unsigned ofAuthority, std::initializer_list<std::uint32_t> parts);

}  // namespace TarnLab::Sid

#endif
