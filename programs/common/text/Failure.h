#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Tool {

/// A request that cannot be carried out. Names stand in the messages as they are: the console makes each message one
/// printable line.
class Failure : public std::runtime_error {
 public:
  explicit Failure(std::string const& message) : Failure(std::vector{message}) {}
  /// `messages`: one or more.
  explicit Failure(std::vector<std::string> messages)
      : std::runtime_error(messages.front()), messages_(std::move(messages)) {}

  std::vector<std::string> const& messages() const { return messages_; }

 private:
  std::vector<std::string> messages_;
};

/// A command line that makes no sense, as became clear only while the command ran. Names stand in it as they are.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Tool
