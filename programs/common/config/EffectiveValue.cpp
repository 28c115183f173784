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
  auto const isEffectiveOf = [&](std::string_view configured) {
    AttributeRecord const* const found = type.attribute(configured);
    return found && effectiveAttribute(type, *found) == &attr;
  };
  std::string name = attr.name;
  if (name.ends_with("Value") && isEffectiveOf(std::string_view(name).substr(0, name.size() - 5))) return true;
  if (!name.starts_with("valid") || name.size() == 5) return false;
  name[5] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[5])));
  return isEffectiveOf(std::string_view(name).substr(5));
}

}  // namespace Tool
