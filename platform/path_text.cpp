#include "platform/path_text.h"

#include <algorithm>
#include <cstdlib>

#include "platform/user_accounts.h"

namespace qx::detail {
namespace {

// Calls visit(component) for the texts between slashes that are not empty.
template <class Visit>
void forEachComponent(std::string_view path, Visit visit) {
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    if (end > start) visit(path.substr(start, end - start));
    start = end + 1;
  }
}

std::string homeOf(std::string_view user) {
  if (user.empty()) return homeFolder();
  const auto account = userAccounts().named(std::string(user));
  return account ? account->home : std::string();
}

}  // namespace

std::string pathBytes(StringArg path) {
  return path.object() == nullptr ? std::string(path.bytes()) : path.utf8();
}

std::string expandedTilde(std::string path) {
  if (!path.starts_with('~')) return path;
  const std::size_t end = std::min(path.find('/'), path.size());
  const std::string home = homeOf(std::string_view(path).substr(1, end - 1));
  if (home.empty()) return path;
  if (home.ends_with('/') && end < path.size()) return home + path.substr(end + 1);
  return home + path.substr(end);
}

std::string standardizedPath(std::string path) {
  path = expandedTilde(std::move(path));
  const bool isAbsolute = path.starts_with('/');
  std::vector<std::string_view> kept;
  forEachComponent(path, [&](std::string_view component) {
    if (component == ".") return;
    if (component != ".." || (kept.empty() && !isAbsolute) ||
        (!kept.empty() && kept.back() == "..")) {
      kept.push_back(component);
    } else if (!kept.empty()) {
      kept.pop_back();
    }
  });
  std::string out = isAbsolute ? "/" : "";
  for (const std::string_view component : kept) {
    if (!out.empty() && out.back() != '/') out += '/';
    out += component;
  }
  return out.empty() && !path.empty() ? "." : out;
}

std::vector<std::string_view> componentsOfPath(std::string_view path) {
  std::vector<std::string_view> components;
  if (path.starts_with('/')) components.push_back(path.substr(0, 1));
  forEachComponent(path, [&](std::string_view component) { components.push_back(component); });
  const bool holdsName = components.size() > (path.starts_with('/') ? 1U : 0U);
  if (holdsName && path.ends_with('/')) components.push_back(path.substr(path.size() - 1));
  return components;
}

std::string joinedPath(std::string_view folder, std::string_view component) {
  std::string out(folder);
  if (component == "/" && !out.empty()) return out;
  if (!out.empty() && out.back() != '/') out += '/';
  return out.append(component);
}

std::string temporaryFolder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && folder[0] == '/' ? folder : "/tmp";
}

}  // namespace qx::detail
