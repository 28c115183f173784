#pragma once

#include <RouterPlatform/Mirror/ChangeStream.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <array>
#include <chrono>
#include <string>

namespace Tool {

/// A mirror of the trees that somebody serves on a socket, whatever their types are. Attaches again, and goes on with
/// the same mirror, when the server ends and another one comes.
class MirrorClient {
 public:
  /// Is told what happens, while the context runs. What it throws comes out of there.
  class Observer {
   public:
    virtual void onAttached() = 0;
    /// Nobody listens, or whoever did has ended. A try follows, and another one, until somebody does.
    virtual void onMissing(std::string const& why) = 0;
    /// Something has come, complete or not.
    virtual void onOctets() = 0;
    /// The mirror has come to what the server has.
    virtual void onSynchronized(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots) = 0;

   protected:
    ~Observer() = default;
  };

  /// Begins when `context` runs. Throws `Failure` from there when the socket cannot be used, or what comes from it not
  /// be read.
  MirrorClient(asio::io_context& context, std::string path, Observer& observer);

 private:
  static constexpr std::chrono::milliseconds retryInterval{200};

  void attach();
  void read();
  void take(std::size_t size);
  /// What a new stream mends is asked for; anything else is a failure.
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
