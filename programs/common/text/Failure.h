#pragma once

#include <stdexcept>

namespace Tool {

/// What was asked for cannot be done; `what()` says why, ready to be shown.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line makes no sense, which only came out while the command ran.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Tool
