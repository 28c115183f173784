#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/ChangeStreamFormat.h>
#include <RouterPlatform/Mirror/ChangeStreamSchema.h>

#include <algorithm>
#include <optional>
#include <set>

namespace Fwk::ChangeStream {

using namespace detail;

namespace {

/// Ends the reading of a stream.
struct Failure {
  ReadErrorKind kind;
  String text;
};

void require(bool wellFormed, char const* what) {
  if (!wellFormed) throw Failure{ReadErrorKind::malformed, what};
}

/// Members that existed before the snapshot and that it has not named yet.
struct Unmentioned {
  AttributeRecord const* attr;
  std::unique_ptr<StreamWalk> members;           ///< null: a child; in arbitrary order it stays at the first member
  std::set<String, std::less<>> mentioned = {};  ///< keys that were named, in arbitrary order
};

/// An entity that records are about.
struct Frame {
  Ptr<Entity> entity;  ///< null: unknown here, records about it are skipped
  std::vector<Unmentioned> unmentioned;
};

void* objectOf(Frame const& frame) { return frame.entity.get(); }

/// Reads a place; returns its attribute, or null when it is unknown here.
AttributeRecord const* takeAttribute(Frame const& frame, OctetSource& in) {
  U64 place = 0;
  require(in.number(place), "no place");
  if (!frame.entity) return nullptr;
  auto const attributes = frame.entity->fwkType().attributes;
  if (place >= attributes.size()) return nullptr;
  AttributeRecord const& attr = attributes[static_cast<std::size_t>(place)];
  return attr.reflected && attr.streamed() ? &attr : nullptr;
}

Octets takeBlock(OctetSource& in) {
  OctetSource content;
  require(in.block(content), "a block passes the end");
  return content.rest();
}

std::string_view textOf(Octets octets) { return OctetSource(octets).restAsText(); }

/// Members and children of the entity and of everything below it.
std::size_t membersBelow(Entity const& entity) {
  std::size_t count = 0;
  for (AttributeRecord const& attr : entity.fwkType().attributes) {
    if (attr.child) {
      if (Ptr<Entity> const child = attr.child->get(&entity)) count += 1 + membersBelow(*child);
    } else if (attr.streamed() && attr.collection && attr.collection->size(&entity) > 0) {
      count += attr.collection->size(&entity);
      if (!attr.collection->stream->ofEntities) continue;
      for (auto const walk = attr.collection->stream->walk(&entity); !walk->atEnd(); walk->next())
        count += membersBelow(*walk->entity());
    }
  }
  return count;
}

}  // namespace

class Reader::Impl {
 public:
  Impl(std::vector<Ptr<Entity>> roots, RootFactory factory, ReaderOptions const& options)
      : roots_(std::move(roots)), factory_(std::move(factory)), options_(options) {
    for (auto const& root : roots_)
      if (root) members_ += membersBelow(*root);
  }

  bool feed(Octets octets) {
    if (error_) return false;
    try {
      read(octets);
    } catch (Failure const& failure) {
      fail(failure.kind, failure.text);
    } catch (std::exception const& exception) {
      fail(ReadErrorKind::refused, exception.what());
    }
    return !error_;
  }

  void attach() {
    error_ = ReadError();
    rest_.clear();
    offset_ = 0;
    greeted_ = inSnapshot_ = hasSnapshot_ = synchronized_ = false;
    frames_.clear();
  }

  ReadError const& error() const noexcept { return error_; }
  bool synchronized() const noexcept { return synchronized_; }
  std::vector<Ptr<Entity>> const& roots() const noexcept { return roots_; }

 private:
  void read(Octets octets) {
    if (rest_.empty()) {
      auto const used = static_cast<std::ptrdiff_t>(readComplete(octets));
      rest_.assign(octets.begin() + used, octets.end());
    } else {
      rest_.insert(rest_.end(), octets.begin(), octets.end());
      auto const used = static_cast<std::ptrdiff_t>(readComplete(rest_));
      rest_.erase(rest_.begin(), rest_.begin() + used);
    }
  }

  /// Applies the complete records in `octets`; returns how many octets they take.
  std::size_t readComplete(Octets octets) {
    std::size_t used = 0;
    while (std::size_t const size = readOne(octets.subspan(used))) {
      used += size;
      offset_ += size;
    }
    return used;
  }

  void fail(ReadErrorKind kind, String text) {
    error_ = ReadError{kind, offset_, std::move(text)};
    synchronized_ = false;
    frames_.clear();
  }

  /// Applies the record at the start of `octets` and returns its size; 0 when it is not complete.
  std::size_t readOne(Octets octets) {
    OctetSource in(octets);
    U8 kind = 0;
    if (!in.octet(kind)) return 0;
    U64 size = 0;
    Octets const sizeOctets = in.rest().first(std::min(in.rest().size(), numberSizeMax));
    OctetSource sizeIn(sizeOctets);
    if (!sizeIn.number(size)) {
      // A number of the greatest size, or one that ends before, is malformed when it cannot be read.
      bool const complete = std::ranges::any_of(sizeOctets, [](U8 octet) { return octet < 0x80; });
      require(!complete && sizeOctets.size() < numberSizeMax, "a record's size is no number");
      return 0;
    }
    if (size > options_.maxRecordSize) throw Failure{ReadErrorKind::tooLarge, "a record is too large"};
    (void)in.number(size);
    Octets body;
    if (!in.octets(static_cast<std::size_t>(size), body)) return 0;
    apply(static_cast<RecordKind>(kind), OctetSource(body));
    return octets.size() - in.rest().size();
  }

  void apply(RecordKind kind, OctetSource in) {
    if (!greeted_) {
      require(kind == RecordKind::hello, "not the start of a change stream");
      return hello(in);
    }
    switch (kind) {
      case RecordKind::hello:
        return require(false, "a second start");
      case RecordKind::batch:
        return batch(in);
      case RecordKind::begin:
        return begin();
      case RecordKind::root:
        return root(in);
      case RecordKind::end:
        return end();
      case RecordKind::at:
        return at(in);
      case RecordKind::value:
        return value(in);
      case RecordKind::member:
        return member(in);
      case RecordKind::leave:
        return leave();
      case RecordKind::row:
        return row(in, false);
      case RecordKind::lastRow:
        return row(in, true);
      case RecordKind::removed:
        return removed(in);
      case RecordKind::mark:
        return mark();
    }
    // Unknown record kind from a newer writer: safe to skip.
  }

  void hello(OctetSource in) {
    Octets start;
    require(in.octets(magic.size(), start) && textOf(start) == magic, "not the start of a change stream");
    U64 theirVersion = 0;
    U64 hash = 0;
    require(in.number(theirVersion), "no version");
    if (theirVersion != version) throw Failure{ReadErrorKind::incompatible, "another version of the stream"};
    require(in.fixed64(hash), "no schema");
    checkSchema(hash, in);
    greeted_ = true;
    nextBatch_ = 1;
  }

  void checkSchema(U64 hash, OctetSource in) {
    std::vector<TypeRecord const*> types;
    for (auto const& root : roots_)
      if (root) types.push_back(&root->fwkType());
    Schema const ours(types);
    if (hash == ours.hash()) return;
    String difference;
    SchemaMatch const match = compareSchema(ours, in, difference);
    require(match != SchemaMatch::malformed, "the schema is malformed");
    if (match == SchemaMatch::different) throw Failure{ReadErrorKind::incompatible, "another type of " + difference};
  }

  void batch(OctetSource in) {
    U64 number = 0;
    require(in.number(number), "no number");
    if (number != nextBatch_) throw Failure{ReadErrorKind::gap, "octets are missing"};
    ++nextBatch_;
  }

  void begin() {
    frames_.clear();
    inSnapshot_ = true;
    hasSnapshot_ = synchronized_ = false;
    rootsNamed_ = 0;
  }

  void end() {
    require(inSnapshot_ && frames_.empty(), "the end of no snapshot");
    while (factory_ && roots_.size() > rootsNamed_) {
      letGo(roots_.back());
      roots_.pop_back();
    }
    inSnapshot_ = false;
    hasSnapshot_ = true;
  }

  void mark() {
    require(hasSnapshot_ && frames_.size() <= 1, "a mark within something else");
    synchronized_ = true;
  }

  void root(OctetSource in) {
    U64 index = 0;
    require(inSnapshot_ && frames_.empty() && in.number(index) && index == rootsNamed_ && index < maxRoots,
            "a root out of its place");
    std::string_view const typeName = textOf(takeBlock(in));
    ++rootsNamed_;
    enter(rootOf(static_cast<std::size_t>(index), typeName, in.restAsText()));
  }

  Ptr<Entity> rootOf(std::size_t index, std::string_view typeName, std::string_view key) {
    if (factory_) {
      if (index == roots_.size()) roots_.emplace_back();
      Ptr<Entity>& root = roots_[index];
      if (!root || root->fwkType().name != typeName || root->keyText() != key) {
        letGo(root);
        root = factory_(typeName, key);
      }
    }
    if (index >= roots_.size()) return nullptr;
    Ptr<Entity> const& root = roots_[index];
    if (root && root->fwkType().name != typeName)
      throw Failure{ReadErrorKind::incompatible, "a root is of another type"};
    return root;
  }

  /// The next records are about `entity`, until `leave`.
  void enter(Ptr<Entity> entity) {
    if (frames_.size() == maxDepth) throw Failure{ReadErrorKind::tooLarge, "too deep"};
    Frame& frame = frames_.emplace_back();
    frame.entity = std::move(entity);
    if (inSnapshot_ && frame.entity) findUnmentioned(frame);
  }

  void findUnmentioned(Frame& frame) const {
    for (AttributeRecord const& attr : frame.entity->fwkType().attributes) {
      if (!attr.streamed() || attr.put) continue;
      if (attr.child) {
        if (attr.child->get(objectOf(frame))) frame.unmentioned.push_back({&attr, nullptr});
      } else if (attr.collection->size(objectOf(frame)) > 0) {
        frame.unmentioned.push_back({&attr, attr.collection->stream->walk(objectOf(frame))});
      }
    }
  }

  void leave() {
    require(frames_.size() > (inSnapshot_ ? 0U : 1U), "nothing to leave");
    synchronized_ = false;
    Frame& frame = frames_.back();
    for (Unmentioned& left : frame.unmentioned) {
      if (left.members)
        removeUnmentioned(frame, left, {});
      else
        removeChild(frame, *left.attr);
    }
    frames_.pop_back();
  }

  Frame& current() {
    require(!frames_.empty(), "about nothing");
    synchronized_ = false;
    return frames_.back();
  }

  void at(OctetSource in) {
    require(hasSnapshot_ && frames_.size() <= 1, "elsewhere within something else");
    U64 index = 0;
    require(in.number(index) && index < rootsNamed_, "no such root");
    Frame frame;
    if (index < roots_.size()) frame.entity = roots_[static_cast<std::size_t>(index)];
    std::size_t depth = 0;
    while (!in.atEnd()) {
      if (++depth == maxDepth) throw Failure{ReadErrorKind::tooLarge, "too deep"};
      AttributeRecord const* const attr = takeAttribute(frame, in);
      Octets const key = takeBlock(in);
      frame.entity = attr ? entityOf(frame, *attr, key) : nullptr;
    }
    synchronized_ = false;
    frames_.clear();
    frames_.push_back(std::move(frame));
  }

  static Ptr<Entity> entityOf(Frame const& frame, AttributeRecord const& attr, Octets key) {
    Ptr<Entity> found;
    if (attr.child) {
      found = attr.child->get(objectOf(frame));
      if (found && found->name() != textOf(key)) found = nullptr;
    } else if (attr.collection) {
      found = attr.collection->stream->entity(objectOf(frame), key);
    }
    if (!found) throw Failure{ReadErrorKind::lost, "a way leads to nothing"};
    return found;
  }

  void value(OctetSource in) {
    Frame const& frame = current();
    AttributeRecord const* const attr = takeAttribute(frame, in);
    if (!attr) return;
    require(attr->take && attr->take(objectOf(frame), in), "no value of the attribute");
  }

  void member(OctetSource in) {
    Frame& frame = current();
    AttributeRecord const* const attr = takeAttribute(frame, in);
    if (!attr) return enter(nullptr);
    Ptr<Entity> const made = attr->child ? childIs(frame, *attr, in.restAsText()) : memberIs(frame, *attr, in.rest());
    require(static_cast<bool>(made), "no member of the attribute");
    enter(made);
  }

  Ptr<Entity> childIs(Frame& frame, AttributeRecord const& attr, std::string_view name) {
    if (inSnapshot_)
      std::erase_if(frame.unmentioned, [&](Unmentioned const& left) { return left.attr == &attr; });
    else
      removeChild(frame, attr);
    Ptr<Entity> const before = attr.child->get(objectOf(frame));
    Ptr<Entity> made = attr.child->set(objectOf(frame), name);
    if (made && made != before) {
      if (before) {
        countOut(1);
        letGo(before);
      }
      countIn(1);
    }
    return made;
  }

  Ptr<Entity> memberIs(Frame& frame, AttributeRecord const& attr, Octets key) {
    require(attr.collection && attr.collection->stream->ofEntities, "a member of no collection");
    makeWay(frame, attr, key, true);
    Ptr<Entity> made;
    require(setMember(frame, attr, key, {}, made), "no key of the collection");
    return made;
  }

  void row(OctetSource in, bool last) {
    Frame& frame = current();
    AttributeRecord const* const attr = takeAttribute(frame, in);
    if (!attr) return;
    require(attr->collection && !attr->collection->stream->ofEntities, "a row of no collection");
    Octets const key = takeBlock(in);
    makeWay(frame, *attr, key, last);
    Ptr<Entity> none;
    require(setMember(frame, *attr, key, in.rest(), none), "no row of the collection");
  }

  void removed(OctetSource in) {
    Frame const& frame = current();
    AttributeRecord const* const attr = takeAttribute(frame, in);
    if (!attr) return;
    if (attr->child)
      removeChild(frame, *attr);
    else
      require(attr->collection && removeMember(frame, *attr, in.rest()), "no key of the collection");
  }

  // Every change of a mirror's members goes through the following, which count them.

  bool setMember(Frame const& frame, AttributeRecord const& attr, Octets key, Octets value, Ptr<Entity>& made) {
    U64 const before = attr.collection->size(objectOf(frame));
    bool const wellFormed = attr.collection->stream->set(objectOf(frame), key, value, made);
    if (attr.collection->size(objectOf(frame)) > before) countIn(1);
    return wellFormed;
  }

  bool removeMember(Frame const& frame, AttributeRecord const& attr, Octets key) {
    U64 const before = attr.collection->size(objectOf(frame));
    Ptr<Entity> const entity = attr.collection->stream->entity(objectOf(frame), key);
    bool const wellFormed = attr.collection->stream->del(objectOf(frame), key);
    if (attr.collection->size(objectOf(frame)) < before) countOut(1);
    letGo(entity);
    return wellFormed;
  }

  void removeChild(Frame const& frame, AttributeRecord const& attr) {
    Ptr<Entity> const removed = attr.child->del(objectOf(frame));
    if (removed) countOut(1);
    letGo(removed);
  }

  /// An entity is not in the mirror any more, and so is everything below it.
  void letGo(Ptr<Entity> const& entity) {
    if (entity) countOut(membersBelow(*entity));
  }
  /// Observers of the mirror should not change it, but might.
  void countOut(std::size_t count) noexcept { members_ -= std::min(members_, count); }
  void countIn(std::size_t count) {
    members_ += count;
    if (members_ > options_.maxMembers)
      throw Failure{ReadErrorKind::tooLarge, "more than " + std::to_string(options_.maxMembers) + " members"};
  }

  /// Called before a member is set. Outside a snapshot a member that comes last is removed first. In a snapshot an
  /// existing member stays; where order counts, members that stand before it and were not named are removed.
  void makeWay(Frame& frame, AttributeRecord const& attr, Octets key, bool last) {
    if (!inSnapshot_) {
      if (last) (void)removeMember(frame, attr, key);
      return;
    }
    for (Unmentioned& left : frame.unmentioned)
      if (left.attr == &attr) return mention(frame, left, key);
  }

  void mention(Frame const& frame, Unmentioned& left, Octets key) {
    if (left.attr->memberOrder == MemberOrder::arbitrary) {
      left.mentioned.emplace(textOf(key));
      return;
    }
    bool const present = left.attr->collection->stream->contains(objectOf(frame), key);
    removeUnmentioned(frame, left, present ? std::optional(key) : std::nullopt);
    if (!left.members->atEnd()) left.members->next();
  }

  /// Removes members that were not named, up to that of `key`, or all of them.
  void removeUnmentioned(Frame const& frame, Unmentioned& left, std::optional<Octets> key) {
    OctetSink sink(key_);
    for (StreamWalk& members = *left.members; !members.atEnd(); members.next()) {
      key_.clear();
      members.putKey(sink);
      if (key && std::ranges::equal(key_, *key)) return;
      if (left.mentioned.contains(textOf(key_))) continue;
      (void)removeMember(frame, *left.attr, key_);
    }
  }

  std::vector<Ptr<Entity>> roots_;
  RootFactory factory_;  ///< empty: the roots were given
  ReaderOptions options_;
  ReadError error_;
  OctetBuffer rest_;  ///< the start of a record
  OctetBuffer key_;
  U64 offset_ = 0;
  U64 nextBatch_ = 1;
  U64 rootsNamed_ = 0;
  std::size_t members_ = 0;    ///< below all roots
  std::vector<Frame> frames_;  ///< outermost first; outside a snapshot the first one is where `at` led
  bool greeted_ = false;
  bool inSnapshot_ = false;
  bool hasSnapshot_ = false;
  bool synchronized_ = false;
};

Reader::Reader(std::vector<Ptr<Entity>> roots, ReaderOptions const& options)
    : impl_(std::make_unique<Impl>(std::move(roots), nullptr, options)) {}
Reader::Reader(Ptr<Entity> root, ReaderOptions const& options)
    : Reader(std::vector<Ptr<Entity>>{std::move(root)}, options) {}
Reader::Reader(RootFactory factory, ReaderOptions const& options)
    : impl_(std::make_unique<Impl>(std::vector<Ptr<Entity>>(), std::move(factory), options)) {}
Reader::Reader(Reader&&) noexcept = default;
Reader& Reader::operator=(Reader&&) noexcept = default;
Reader::~Reader() = default;

bool Reader::feed(Octets octets) { return impl_->feed(octets); }
ReadError const& Reader::error() const noexcept { return impl_->error(); }
void Reader::attach() { impl_->attach(); }
bool Reader::synchronized() const noexcept { return impl_->synchronized(); }
std::vector<Ptr<Entity>> const& Reader::roots() const noexcept { return impl_->roots(); }

Ptr<Entity> registeredRoot(std::string_view typeName, std::string_view key) {
  TypeRecord const* const type = typeRegistry().find(typeName);
  bool const mirrored = type && type->create && std::ranges::any_of(type->attributes, &AttributeRecord::streamed);
  return mirrored ? type->create(key) : nullptr;
}

}  // namespace Fwk::ChangeStream
