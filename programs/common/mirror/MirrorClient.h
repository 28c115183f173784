#pragma once

#include <RouterPlatform/Mirror/ChangeStream.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <array>
#include <chrono>
#include <string>

namespace Tool {

/// A mirror of the trees that a server has on a socket, of any types. When the server ends and another one comes, it
/// attaches again and goes on with the same mirror.
class MirrorClient {
 public:
  /// Is called while the context runs. Its exceptions come out of `run()`.
  class Observer {
   public:
    virtual void onAttached() = 0;
    /// No server listens, or the server has ended. The client tries again until one listens.
    virtual void onMissing(std::string const& why) = 0;
    /// Octets have arrived, complete records or not.
    virtual void onOctets() = 0;
    /// The mirror equals the server's trees.
    virtual void onSynchronized(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots) = 0;

   protected:
    ~Observer() = default;
  };

  /// Begins when `context` runs. `run()` throws `Failure` when the socket cannot be used or its stream not be read.
  MirrorClient(asio::io_context& context, std::string path, Observer& observer);

 private:
  static constexpr std::chrono::milliseconds retryInterval{200};

  void attach();
  void read();
  void take(std::size_t size);
  /// An error that a new stream mends leads to one; any other is a failure.
  void unreadable();
  void missing(std::string const& why);

  std::string path_;
  Observer& observer_;
  asio::local::stream_protocol::socket socket_;
  asio::steady_timer retry_;
  Fwk::ChangeStream::Reader reader_;
  std::array<Fwk::U8, 65536> octets_{};
};

}  // namespace Tool
