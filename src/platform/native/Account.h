#pragma once

#include <string>

namespace hylden {

/// The name of the account that the program runs under; empty where it has none.
std::string AccountName();

}  // namespace hylden
