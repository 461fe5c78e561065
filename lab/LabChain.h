// The chain of typed elements that a container consists of.
#ifndef TARNLAB_CHAIN_H
#define TARNLAB_CHAIN_H

#include <string>
#include <vector>

#include "LabBytes.h"

namespace TarnLab::Chain {

inline constexpr std::size_t headSize = 12, type = 0, count = 4, bytes = 8;
inline constexpr std::size_t elementHeadSize = 8;

/// What a kernel would find wrong with the chain; empty when nothing.
std::string fault(ConstBytes chain);

/// The elements of a chain: key and value, as "APP_ID : 12" without names of values. None of a
/// chain with a fault.
std::vector<std::string> texts(ConstBytes chain);

/// The same of bytes that a chain begins, with a line that says what is wrong with it.
std::vector<std::string> lines(ConstBytes bytes);

}  // namespace TarnLab::Chain

#endif
