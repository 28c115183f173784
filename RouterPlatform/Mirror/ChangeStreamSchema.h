#pragma once

#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <span>
#include <string_view>
#include <vector>

namespace Fwk::ChangeStream::detail {

/// What a stream says of the types in it, so that a reader knows whether it means the same by them: names, and of each
/// attribute that is streamed its place, name, kind and types.
class Schema {
 public:
  /// Of the roots' types and everything that can hang below them.
  explicit Schema(std::span<TypeRecord const* const> roots);

  OctetBuffer const& octets() const noexcept { return octets_; }
  U64 hash() const noexcept;
  /// The type of that name: one of these, or a registered one; null when it is not known here.
  TypeRecord const* find(std::string_view name) const noexcept;

 private:
  void add(TypeRecord const& type);

  std::vector<TypeRecord const*> types_;
  OctetBuffer octets_;
};

/// Whether a stream of schema `theirs` can be read with `ours`: nothing that both know differs. Types and attributes
/// that only one side has do no harm. Otherwise `difference` says what there is.
enum class SchemaMatch : U8 { compatible, malformed, different };
SchemaMatch compareSchema(Schema const& ours, OctetSource theirs, String& difference);

}  // namespace Fwk::ChangeStream::detail
