#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/Entity.h>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

/// Entity trees as octets, for a mirror in another process: first a snapshot, then the changes.
///
///     ChangeStream::Source source({config, status});   // once
///     ChangeStream::Writer writer(source);             // one per subscriber
///     writer.drain(out);                               // whenever the subscriber has room and writer.pending()
///
///     ChangeStream::Reader reader({mirrorOfConfig, mirrorOfStatus});
///     if (!reader.feed(octets)) ...reader.error()...   // then attach() and a new stream
///
/// A stream carries the attributes that type records call streamed: scalars that can be set, collections, children.
/// docs/formats/change-stream.md describes the octets. Thread rule of everything here: that of the trees.
namespace Fwk::ChangeStream {

/// Bounds of a source.
struct SourceOptions {
  /// Octets of memory for changes that some subscriber has not drained yet, for all subscribers together. When they are
  /// full, the oldest changes go, and a subscriber that needed them gets a new snapshot.
  std::size_t maxPendingOctets = std::size_t{8} << 20;
};

namespace detail {
class Hub;
}

/// Entity trees that are streamed. Observes every entity in them, once for all subscribers; keeps the roots alive.
///
/// Two kinds of change are not seen: those while an entity's notification is inactive, and those of which an earlier
/// observer threw. `Writer::restart` makes up for them. docs/adr/0008
class ROUTER_PLATFORM_EXPORT Source {
 public:
  /// At most 64 trees, none of them within another. Throws std::length_error, and std::bad_alloc.
  explicit Source(std::vector<Ptr<Entity>> roots, SourceOptions const& options = {});

  /// Octets of memory that hold changes now; at most `maxPendingOctets`.
  std::size_t pendingOctets() const noexcept;
  /// Number of changes that are held now: at most one per attribute or member.
  std::size_t pendingChanges() const noexcept;

 private:
  friend class Writer;
  std::shared_ptr<detail::Hub> hub_;
};

/// One subscriber's stream. Holds no changes, only its place among those of the source, and in a snapshot its place
/// in the trees. Keeps the source's trees alive.
class ROUTER_PLATFORM_EXPORT Writer {
 public:
  static constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

  explicit Writer(Source const& source);
  /// For one tree with one subscriber.
  explicit Writer(Ptr<Entity> root, SourceOptions const& options = {});
  Writer(Writer&&) noexcept;
  Writer& operator=(Writer&&) noexcept;
  ~Writer();

  /// Whether `drain` has octets to append: from the start, and after each change.
  bool pending() const noexcept;

  /// Appends records until nothing is pending or `maxOctets` are reached, which the last record may exceed; returns the
  /// number of octets appended. The writer does not keep them: if they are lost, so is the stream, and the reader
  /// notices the gap at the next octets. Throws std::bad_alloc, and then the stream begins anew.
  std::size_t drain(OctetBuffer& out, std::size_t maxOctets = noLimit);

  /// Begins a new stream, for a reader that attaches anew.
  void restart();

  /// Called when something becomes pending after a drain that left nothing. Runs inside the change's notification: it
  /// marks or wakes, and must not drain, change the trees, or throw.
  void onPendingIs(std::function<void()> call);

  /// How often a new snapshot replaced changes that could not be held.
  U64 overflows() const noexcept;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// Why a stream can no longer be read.
enum class ReadErrorKind : U8 {
  none,
  malformed,     ///< a writer writes no such octets
  incompatible,  ///< another version, or a type that differs in more than attributes that were added
  gap,           ///< octets are missing
  lost,          ///< a record is about an entity that is not in the mirror
  tooLarge,      ///< a record, a depth or a number of members above the bounds
  refused,       ///< the mirror threw an exception: `text` is its what()
};

/// An error of a stream; true when there is one.
struct ReadError {
  ReadErrorKind kind = ReadErrorKind::none;
  U64 offset = 0;  ///< of the record, in octets from the start of the stream
  String text;     ///< for people
  explicit operator bool() const noexcept { return kind != ReadErrorKind::none; }
};

/// Bounds of a reader.
struct ReaderOptions {
  /// Octets of the largest record that is taken. A writer's records are as large as the values in them.
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
/// Any octets may arrive: they end in an error or in a sound mirror, and take memory in proportion to their number.
class ROUTER_PLATFORM_EXPORT Reader {
 public:
  /// Makes a root of that registered type and key, in plain text; null: the tree is skipped.
  using RootFactory = std::function<Ptr<Entity>(std::string_view typeName, std::string_view key)>;

  /// For a mirror that exists: one root per root of the source, in order and of the same types; names may differ.
  /// Further trees of the source are skipped.
  explicit Reader(std::vector<Ptr<Entity>> roots, ReaderOptions const& options = {});
  explicit Reader(Ptr<Entity> root, ReaderOptions const& options = {});
  /// For a mirror that is made when the stream names its roots: see `registeredRoot`. A later stream keeps a root that
  /// has the same type and key, and drops roots that it does not have.
  explicit Reader(RootFactory factory, ReaderOptions const& options = {});
  Reader(Reader&&) noexcept;
  Reader& operator=(Reader&&) noexcept;
  ~Reader();

  /// Applies the complete records and keeps the rest for the next call. False: there is an error, now or since an
  /// earlier call, and nothing is read until `attach`. An observer of the mirror must not call it.
  bool feed(Octets octets);
  ReadError const& error() const noexcept;

  /// Begins another stream and keeps the mirror.
  void attach();

  /// Whether the mirror equals the source as it was when it was last drained to the end. False from an attachment until
  /// then, and after a part of a drain.
  bool synchronized() const noexcept;

  /// The roots of the mirror; a null one is not made yet, or its tree is skipped.
  std::vector<Ptr<Entity>> const& roots() const noexcept;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// Makes a root of any type in the type registry, as a `Reader` needs it for its mirror. Null when the registry has no
/// such entity type, when a stream carries nothing of it, or when `key` is no key of it.
ROUTER_PLATFORM_EXPORT Ptr<Entity> registeredRoot(std::string_view typeName, std::string_view key);

}  // namespace Fwk::ChangeStream
