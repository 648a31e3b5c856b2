// Shows a folder as a tree with the sizes of what is in it, and what kinds of files these are.
//
//     example_collections              the folder of example data
//     example_collections FOLDER
//
// A folder that can not be read is told, and makes the program end with 1. Symbolic links are not
// followed.

#include <filesystem>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/array_functional.h>
#include <QXFoundation/class_builder.h>
#include <QXFoundation/dictionary_operations.h>
#include <QXFoundation/key_order_sorting.h>
#include <QXFoundation/size_formatter.h>
#include <QXFoundation/string_operations.h>
#include <QXFoundation/tree.h>

namespace {

// A node of the tree: a folder or a file, which carries its name.
class FileNode : public qx::QXTree {
 public:
  FileNode(const std::string& name, std::int64_t size, bool isFolder)
      : QXTree(qx::String::from(name)), size_(size), isFolder_(isFolder) {}

  std::string name() const { return object().description(); }
  std::int64_t size() const { return size_; }
  bool isFolder() const { return isFolder_; }

  // Children have been visited when this is: they know what is below them.
  void addToParent() {
    if (const auto folder = qx::PropertyValue(parent()).as<FileNode>()) folder->size_ += size_;
  }
  // Notes the file under the end of its name: ".txt".
  void addToKinds(const qx::PropertyValue& kinds) {
    if (isFolder_) return;
    const auto list = kinds.as<qx::MutableDictionary>();
    const std::string end = std::filesystem::path(name()).extension().string();
    const std::string kind = end.empty() ? "(none)" : end;
    list->setObject(intForKey(list, kind) + 1, kind);
  }

 private:
  std::int64_t size_;
  bool isFolder_;
};
void describe(qx::ClassBuilder<FileNode>& c) {
  c.name("FileNode")
      .inherits<qx::QXTree>()
      .property("name", &FileNode::name)
      .operation("addToParent", &FileNode::addToParent)
      .operation("addToKinds:", &FileNode::addToKinds);
}

namespace fs = std::filesystem;

// Adds what is in the folder below the node; false where some of it can not be read.
bool fill(const qx::Ref<FileNode>& root, const fs::path& top) {
  bool isComplete = true;
  std::vector<std::pair<qx::Ref<FileNode>, fs::path>> waiting{{root, top}};
  while (!waiting.empty()) {
    const auto [node, folder] = waiting.back();
    waiting.pop_back();
    std::error_code fault;
    for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end;
         entry.increment(fault)) {
      std::error_code unknown;
      const bool isFolder = entry->is_directory(unknown) && !entry->is_symlink(unknown);
      const bool isFile = entry->is_regular_file(unknown) && !entry->is_symlink(unknown);
      const auto size = isFile ? static_cast<std::int64_t>(entry->file_size(unknown)) : 0;
      const auto child =
          qx::make<FileNode>(entry->path().filename().string(), unknown ? 0 : size, isFolder);
      node->addChild(child);
      if (isFolder) waiting.emplace_back(child, entry->path());
    }
    // The list of the children is the node's own, so that it can be sorted in place.
    sortStablyUsingOrderings(node->childs(), qx::array(qx::QXSortOrdering::sortOrderingWithKey(
                                                 "name", "compareAscending:")));
    if (!fault) continue;
    std::cerr << folder.string() << ": " << fault.message() << '\n';
    isComplete = false;
  }
  return isComplete;
}

void show(const FileNode& node, const std::string& indent) {
  // A name may hold what would break the line.
  const auto name = stringByReplacingCharactersInSet(qx::String::from(node.name()),
                                                     qx::CharacterSet::newlineCharacterSet(), "?");
  std::cout << indent << name->utf8() << (node.isFolder() ? "/  " : "  ")
            << qx::QXSizeFormatter::stringForByteCount(node.size())->utf8() << '\n';
  qxForEach(node.childs(),
            [&](const qx::PropertyValue& child) { show(*child.as<FileNode>(), indent + "  "); });
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path top(argc > 1 ? argv[1] : EXAMPLES_DIR "/data");
  const auto root = qx::make<FileNode>(top.filename().string(), 0, true);
  const bool isComplete = fill(root, top);
  root->traversePostorder("addToParent");
  show(*root, "");

  const auto kinds = qx::MutableDictionary::init();
  root->traversePostorder("addToKinds:", kinds);
  qxForEach(kinds->allKeys(), [&](const qx::PropertyValue& kind) {
    std::cout << kind.description() << ": " << intForKey(kinds, kind.as<qx::String>()) << '\n';
  });
  // A child owns its parent, so that a tree does not end by itself.
  root->takeApart();
  return isComplete ? 0 : 1;
}
