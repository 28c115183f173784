#include <programs/common/mirror/MirrorClient.h>
#include <programs/common/mirror/SocketPath.h>
#include <programs/common/text/Failure.h>

#include <asio/buffer.hpp>
#include <asio/post.hpp>

#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

/// Why there is no connection, if the cause may pass; otherwise empty.
std::string passingReason(std::string const& path, int error) {
  if (error == ECONNREFUSED && !isSocket(path)) return "";
  if (error == EAGAIN) return "the server has no room for one more mirror";
  return error == ENOENT || error == ECONNREFUSED ? "nobody listens there" : "";
}

}  // namespace

MirrorClient::MirrorClient(asio::io_context& context, std::string path, Observer& observer)
    : path_(std::move(path)),
      observer_(observer),
      socket_(context),
      retry_(context),
      reader_(&Fwk::ChangeStream::registeredRoot) {
  asio::post(context, [this] { attach(); });
}

void MirrorClient::attach() {
  int error = 0;
  FileDescriptor connection = connectTo(path_, error);
  if (std::string const reason = passingReason(path_, error); !reason.empty()) return missing(reason);
  if (error == ECONNREFUSED) throw Failure(path_ + ": there is something that is no socket");
  if (error != 0) throw Failure(path_ + ": cannot be connected to: " + std::strerror(error));
  socket_.assign(asio::local::stream_protocol(), connection.release());
  reader_.attach();
  observer_.onAttached();
  read();
}

void MirrorClient::read() {
  socket_.async_read_some(asio::buffer(octets_), [this](std::error_code error, std::size_t size) {
    if (!error) return take(size);
    socket_.close();
    missing("the server has ended");
  });
}

void MirrorClient::take(std::size_t size) {
  observer_.onOctets();
  if (!reader_.feed(std::span(octets_).first(size))) return unreadable();
  if (reader_.synchronized()) observer_.onSynchronized(reader_.roots());
  read();
}

void MirrorClient::unreadable() {
  using Fwk::ChangeStream::ReadErrorKind;
  ReadErrorKind const kind = reader_.error().kind;
  if (kind != ReadErrorKind::gap && kind != ReadErrorKind::lost)
    throw Failure(path_ + ": what comes from there cannot be read: " + reader_.error().text + " (octet " +
                  std::to_string(reader_.error().offset) + ')');
  socket_.close();
  missing("something of the changes is missing");
}

void MirrorClient::missing(std::string const& why) {
  observer_.onMissing(why);
  retry_.expires_after(retryInterval);
  retry_.async_wait([this](std::error_code aborted) {
    if (!aborted) attach();
  });
}

}  // namespace Tool
