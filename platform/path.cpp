#include <QXFoundation/path.h>

#include "frame/raise.h"
#include "platform/added_operations.h"
#include "platform/path_text.h"
#include "platform/user_accounts.h"

namespace qx {

Ref<String> stringByExpandingTildeInPath(In<String> path) {
  return path ? String::from(detail::expandedTilde(path->utf8())) : nullptr;
}

Ref<String> stringByStandardizingPath(In<String> path) {
  return path ? String::from(detail::standardizedPath(path->utf8())) : nullptr;
}

Ref<Array> pathComponents(In<String> path) {
  if (!path) return nullptr;
  const std::string text = path->utf8();
  const auto components = MutableArray::init();
  for (const std::string_view component : detail::componentsOfPath(text)) {
    components->addObject(String::from(component));
  }
  return Array::from(components->begin(), components->count());
}

Ref<String> qxPathWithComponents(In<Array> components) {
  if (!components) return nullptr;
  std::string path;
  for (const PropertyValue& component : *components) {
    path = detail::joinedPath(path, FromValue<std::string>::get(component));
  }
  return String::from(path);
}

Ref<String> stringByAppendingPathComponent(In<String> path, StringArg component) {
  if (!path) return nullptr;
  if (component.isNil()) detail::raiseNil("-[NSString stringByAppendingPathComponent:]");
  return String::from(detail::joinedPath(path->utf8(), component.utf8()));
}

Ref<String> NSTemporaryDirectory() { return String::from(detail::temporaryFolder()); }

Ref<String> NSUserName() { return String::from(detail::userAccounts().current().name); }

namespace detail {

using Value = const PropertyValue&;

void addPathOperations(ClassBuilderBase& c) {
  c.addFunction(
      "stringByExpandingTildeInPath",
      +[](Value r) { return stringByExpandingTildeInPath(r.as<String>()); });
  c.addFunction(
      "stringByStandardizingPath",
      +[](Value r) { return stringByStandardizingPath(r.as<String>()); });
  c.addFunction("pathComponents", +[](Value r) { return pathComponents(r.as<String>()); });
  c.addFunction(
      "stringByAppendingPathComponent:", +[](Value r, const Ref<String>& component) {
        return stringByAppendingPathComponent(r.as<String>(), component);
      });
}

}  // namespace detail
}  // namespace qx
