#pragma once

#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <span>
#include <string_view>
#include <vector>

namespace Fwk::ChangeStream::detail {

/// The description of the types in a stream: their names, and place, name, kind and types of each streamed attribute. A
/// reader compares it with its own.
class Schema {
 public:
  /// Describes the types of the roots and all types that can occur below them.
  explicit Schema(std::span<TypeRecord const* const> roots);

  OctetBuffer const& octets() const noexcept { return octets_; }
  U64 hash() const noexcept;
  /// The type of that name, among the described or the registered ones; null when it is unknown.
  TypeRecord const* find(std::string_view name) const noexcept;

 private:
  void add(TypeRecord const& type);

  std::vector<TypeRecord const*> types_;
  OctetBuffer octets_;
};

/// Whether a stream of schema `theirs` can be read with `ours`: no type or attribute that both have differs. Otherwise
/// `difference` names it.
enum class SchemaMatch : U8 { compatible, malformed, different };
SchemaMatch compareSchema(Schema const& ours, OctetSource theirs, String& difference);

}  // namespace Fwk::ChangeStream::detail
