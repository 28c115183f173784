#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/Entity.h>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

/// Entity trees as octets, for a mirror of them in another process: first a snapshot, then what changes.
///
///     ChangeStream::Source source({config, status});   // once
///     ChangeStream::Writer writer(source);             // for each subscriber
///     writer.drain(out);                               // whenever the subscriber has room and writer.pending()
///
///     ChangeStream::Reader reader({mirrorOfConfig, mirrorOfStatus});
///     if (!reader.feed(octets)) ...reader.error()...   // then attach() and a new stream
///
/// What goes through are the attributes that type records call streamed: scalars that can be set, collections,
/// children. The octets are described in docs/formats/change-stream.md. Thread rule, for all of it: that of the trees.
namespace Fwk::ChangeStream {

/// What the subscribers of a source may cost.
struct SourceOptions {
  /// Octets of memory for changes that some subscriber has not drained yet, whatever the number of subscribers. A
  /// subscriber for whom they do not suffice gets a new snapshot instead of the changes.
  std::size_t maxPendingOctets = std::size_t{8} << 20;
};

namespace detail {
class Hub;
}

/// Entity trees that are streamed. Observes every entity in them, once for all subscribers; keeps the roots alive.
///
/// What changes while an entity's notification is inactive, and what another observer keeps from this one by throwing,
/// is not seen: `Writer::restart` makes up for it.
class ROUTER_PLATFORM_EXPORT Source {
 public:
  /// At most 64 trees, none of them within another. Throws std::length_error, and std::bad_alloc.
  explicit Source(std::vector<Ptr<Entity>> roots, SourceOptions const& options = {});

  /// Octets of memory that hold changes now; bounded by `maxPendingOctets`.
  std::size_t pendingOctets() const noexcept;
  /// Number of changes that are held now: at most one an attribute or member.
  std::size_t pendingChanges() const noexcept;

 private:
  friend class Writer;
  std::shared_ptr<detail::Hub> hub_;
};

/// One subscriber's stream. Holds no changes itself: a place in what the source holds, and in a snapshot the place it
/// has come to. Keeps the source's trees alive.
class ROUTER_PLATFORM_EXPORT Writer {
 public:
  static constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

  explicit Writer(Source const& source);
  /// For one tree with one subscriber.
  explicit Writer(Ptr<Entity> root, SourceOptions const& options = {});
  Writer(Writer&&) noexcept;
  Writer& operator=(Writer&&) noexcept;
  ~Writer();

  /// Whether `drain` has something to give: from the start, and after each change.
  bool pending() const noexcept;

  /// Appends records until nothing is pending or `maxOctets` are reached, which the last record may exceed; returns the
  /// number of octets appended. What is given is gone: to lose octets is to lose the stream, which the reader notices
  /// by the next ones. Throws std::bad_alloc, after which the stream begins anew.
  std::size_t drain(OctetBuffer& out, std::size_t maxOctets = noLimit);

  /// Begins anew, for a reader that attaches anew: the next octets are the first ones of a stream.
  void restart();

  /// Called when something becomes pending after a drain that left nothing. Runs inside the change's notification: it
  /// is to wake somebody up, not to drain, to change the trees, or to throw.
  void onPendingIs(std::function<void()> call);

  /// How often a new snapshot took the place of changes that could not be held.
  U64 overflows() const noexcept;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// What a stream that cannot be read on suffers from.
enum class ReadErrorKind : U8 {
  none,
  malformed,     ///< not what a writer writes
  incompatible,  ///< another version, or a type that differs in more than attributes that were added
  gap,           ///< octets are missing
  lost,          ///< a record is about something that is not in the mirror
  tooLarge,      ///< a record, a depth or a number of members above the bounds
  refused,       ///< the mirror threw: its text is what()
};

/// Why a stream cannot be read on; true when there is an error.
struct ReadError {
  ReadErrorKind kind = ReadErrorKind::none;
  U64 offset = 0;  ///< of the record, in octets from the start of the stream
  String text;     ///< for people
  explicit operator bool() const noexcept { return kind != ReadErrorKind::none; }
};

/// What a reader takes, and how it takes it.
struct ReaderOptions {
  /// Octets of a record that are waited for; a writer's records are as large as the values in them.
  std::size_t maxRecordSize = std::size_t{16} << 20;
  /// Members of collections, entities and values alike, and children that the mirror may have below its roots. A record
  /// of a few octets makes one of some hundred octets; 10,000 interfaces with everything configured have 90,000.
  std::size_t maxMembers = 1'000'000;
};

/// Applies a stream to a mirror: trees that nobody else changes. Setters and collections of the mirror notify as ever,
/// and only of differences, also when a snapshot meets a mirror that has something already. In collections of arbitrary
/// order (`AttributeRecord::memberOrder`) such a snapshot leaves the members that are there in place.
///
/// A new member is notified before it is filled: its observer sees defaults. An observer marks; act on the mark when
/// `feed` has returned. `TreeObserver` does both.
///
/// Any octets may come: they end in an error or in a mirror that is sound, in memory proportional to their number.
class ROUTER_PLATFORM_EXPORT Reader {
 public:
  /// Makes a root of that registered type and key, in plain text; null: this tree is passed over.
  using RootFactory = std::function<Ptr<Entity>(std::string_view typeName, std::string_view key)>;

  /// A mirror that is there, a root for each root of the source, in order and of the same types; names may differ.
  /// Trees of the source beyond these are passed over.
  explicit Reader(std::vector<Ptr<Entity>> roots, ReaderOptions const& options = {});
  explicit Reader(Ptr<Entity> root, ReaderOptions const& options = {});
  /// A mirror that is made when the stream names its roots: see `registeredRoot`. A root that is there is kept when the
  /// next stream's has the same type and key; one beyond those of the next stream is let go.
  explicit Reader(RootFactory factory, ReaderOptions const& options = {});
  Reader(Reader&&) noexcept;
  Reader& operator=(Reader&&) noexcept;
  ~Reader();

  /// Applies what is complete, keeps the rest for the next call. False: there is an error, now or since an earlier
  /// call; nothing is read until `attach`. Not to be called by an observer of the mirror.
  bool feed(Octets octets);
  ReadError const& error() const noexcept;

  /// Begins with another stream, which finds the mirror as it is.
  void attach();

  /// Whether the mirror is what the source was when it was last drained to the end. False from an attachment until
  /// then, and between two drains of which only the second comes to the end.
  bool synchronized() const noexcept;

  /// The mirror; a null one is not made yet, or passed over.
  std::vector<Ptr<Entity>> const& roots() const noexcept;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// A root of any type in the type registry: what a `Reader` makes its mirror with. Null when there is no such entity
/// type here, when a stream carries nothing of it, or when `key` is none of its keys.
ROUTER_PLATFORM_EXPORT Ptr<Entity> registeredRoot(std::string_view typeName, std::string_view key);

}  // namespace Fwk::ChangeStream
