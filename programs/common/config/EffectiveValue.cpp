#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <RouterPlatform/Fwk/Reflection.h>
#include <programs/common/config/EffectiveValue.h>

#include <cctype>

namespace Tool {

namespace {

using Fwk::AttributeKind;
using Fwk::AttributeRecord;

Fwk::AttributeRecord const* effectiveAttribute(Fwk::TypeRecord const& type, AttributeRecord const& attr) {
  std::string const name = attr.name;
  if (attr.kind != AttributeKind::scalar || name.empty()) return nullptr;
  std::string capitalized = name;
  capitalized[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
  for (std::string const& candidate : {name + "Value", "valid" + capitalized})
    if (auto const* found = type.attribute(candidate); found && found->kind == AttributeKind::computed) return found;
  return nullptr;
}

/// The lifetime of a DNS entry, which falls back on the interface's lifetime; the model computes it given the latter.
std::optional<std::string> dnsLifetime(Fwk::Entity const& entity) {
  using namespace RouterAdvt;
  auto const intf = Fwk::ptrCast<IntfConfig const>(entity.parent());
  if (!intf) return std::nullopt;
  if (auto const* server = dynamic_cast<DNSServerConfigEntry const*>(&entity))
    return std::to_string(server->validLifetime(intf->validDnsServersLifetime()));
  if (auto const* suffix = dynamic_cast<DNSSuffixConfigEntry const*>(&entity))
    return std::to_string(suffix->validLifetime(intf->validDnsSuffixesLifetime()));
  return std::nullopt;
}

}  // namespace

std::optional<std::string> effectiveValue(Fwk::Entity const& entity, AttributeRecord const& attr) {
  AttributeRecord const* const effective = effectiveAttribute(entity.fwkType(), attr);
  if (!effective) return std::nullopt;
  if (!effective->readable()) return dnsLifetime(entity);
  std::string text;
  effective->append(&entity, text);
  return text;
}

bool isEffectiveValue(Fwk::TypeRecord const& type, AttributeRecord const& attr) {
  // From the name back to that of the configured value: to try every attribute took most of the time of `show`.
  if (attr.kind != AttributeKind::computed) return false;
  std::string_view const name = attr.name;
  std::string configured;
  if (name.starts_with("valid")) {
    configured = name.substr(5);
    if (!configured.empty()) configured[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(configured[0])));
  } else if (name.ends_with("Value")) {
    configured = name.substr(0, name.size() - 5);
  }
  AttributeRecord const* const found = type.attribute(configured);
  return found && effectiveAttribute(type, *found) == &attr;
}

}  // namespace Tool
