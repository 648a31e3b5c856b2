// qx tags: the named, coloured tags of files.

#include <CLI/App.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/color_tag.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/file_argument.h"
#include "tools/qx/message.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"
#include "tools/qx/tag_words.h"

namespace qxtool {
namespace {

struct TagOptions {
  std::vector<std::string> files;
  std::vector<std::string> set;
  std::vector<std::string> add;
  std::vector<std::string> remove;
  bool clear = false;
  bool json = false;
};

using Tag = qx::Ref<qx::QXColorTag>;
using Tags = std::vector<Tag>;

// What is done to the tags of each file, in this order.
struct TagChange {
  bool clears;
  bool replaces;
  Tags removed;
  Tags added;

  bool isNone() const { return !clears && !replaces && removed.empty() && added.empty(); }
};

TagChange changeOf(const TagOptions& options) {
  TagChange change{options.clear, !options.set.empty(), {}, {}};
  // A name may hold anything here, a colon as well.
  for (const std::string& name : options.remove) {
    if (!isValidUtf8(name)) throw Failure("the name of a tag is not UTF-8: " + name);
    change.removed.push_back(qx::QXColorTag::colorTagWithName(name, 0));
  }
  for (const auto* words : {&options.set, &options.add}) {
    for (const std::string& word : *words) change.added.push_back(tagFromWord(word));
  }
  return change;
}

// ---- the tags of one file

// A tag of a file, with the text it is stored as: of what a text may hold beside name and colour
// nothing is lost while the tag stays.
struct FileTag {
  Tag tag;
  Tag stored;
};
using FileTags = std::vector<FileTag>;

// Stored entries that are no tags raise, in words of the library's own.
qx::Ref<qx::Array> readTags(const qx::Ref<qx::URL>& url, const std::string& path) {
  try {
    return qx::colorTagsWithError(url);
  } catch (const qx::InvalidArgumentException&) {
    throw Failure("the tags of " + path + " are no list of texts; --clear gives them up");
  }
}

FileTags tagsOf(const qx::Ref<qx::URL>& url, const std::string& path) {
  qx::Ref<qx::Error> error;
  const qx::PropertyValue texts =
      valueOfExtendedAttributeWithName(url, qx::kColorTagsAttribute, &error);
  if (texts.isNil() && tellsOfNoAttribute(error)) return {};
  if (texts.isNil()) throw attributeFailure("read the tags", path, error);
  const auto tags = readTags(url, path);
  const auto stored = texts.as<qx::Array>();
  if (tags == nullptr || stored == nullptr || tags->count() != stored->count()) {
    throw Failure("the tags of " + path + " were changed meanwhile");
  }
  FileTags all;
  for (std::size_t i = 0; i < tags->count(); ++i) {
    // Without a colour of its own, a tag is stored as its name alone: as that text.
    const auto text = stored->objectAtIndex(i).as<qx::String>();
    all.push_back(
        {tags->objectAtIndex(i).as<qx::QXColorTag>(), qx::QXColorTag::colorTagWithName(text, 0)});
  }
  return all;
}

void put(FileTags& tags, const Tag& tag) {
  for (FileTag& each : tags) {
    if (!isSameName(*each.tag, *tag)) continue;
    if (!each.tag->isEqual(tag)) each = {tag, tag};
    return;
  }
  tags.push_back({tag, tag});
}

void store(const qx::Ref<qx::URL>& url, const std::string& path, const FileTags& tags) {
  qx::Ref<qx::Array> all;
  if (!tags.empty()) {
    all = qx::MutableArray::init();
    for (const FileTag& each : tags) static_cast<qx::MutableArray&>(*all).addObject(each.stored);
  }
  qx::Ref<qx::Error> error;
  if (!setColorTags(url, all, &error)) throw attributeFailure("write the tags", path, error);
}

bool isSame(const FileTags& a, const FileTags& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const FileTag& x, const FileTag& y) {
    return qx::isSame(x.stored, y.stored);
  });
}

bool hasName(const FileTags& tags, const Tag& tag) {
  return std::any_of(tags.begin(), tags.end(),
                     [&](const FileTag& each) { return isSameName(*each.tag, *tag); });
}

// The tags as they are in the end. Tags that can not be read are given up by clearing alone. Of
// `missed`, those that the file has are taken out.
FileTags changedTagsOf(const std::string& path, const TagChange& change, Tags& missed) {
  const auto url = urlOfFile(path);
  const FileTags before = change.clears ? FileTags() : tagsOf(url, path);
  std::erase_if(missed, [&](const Tag& tag) { return change.clears || hasName(before, tag); });
  FileTags after = change.replaces ? FileTags() : before;
  for (const Tag& removed : change.removed) {
    std::erase_if(after, [&](const FileTag& each) { return isSameName(*each.tag, *removed); });
  }
  for (const Tag& added : change.added) put(after, added);
  if (change.clears || !isSame(before, after)) store(url, path, after);
  return after;
}

// ---- several files

// What is told of the files that could be read.
class Report {
 public:
  explicit Report(const TagOptions& options)
      : names_(options.files.size() > 1), json_(options.json), colours_(outputTakesColours()) {}

  void add(const std::string& path, const FileTags& tags) {
    json_ ? addRecord(path, tags) : addLines(path, tags);
  }
  void show() {
    Output output;
    if (json_) {
      Progress progress;
      writeJson({*records_, {}}, output, progress);
    }
    output.write(lines_);
    output.finish();
  }

 private:
  void addRecord(const std::string& path, const FileTags& tags) {
    const auto all = qx::MutableArray::init();
    for (const FileTag& each : tags) {
      all->addObject(qx::dict({{"name", each.tag->name()}, {"color", each.tag->color()}}));
    }
    records_->addObject(qx::dict({{"file", path}, {"tags", all}}));
  }
  void addLines(const std::string& path, const FileTags& tags) {
    for (const FileTag& each : tags) {
      if (names_) lines_ += printable(path) + ": ";
      lines_ += (colours_ ? colouredWordOf(*each.tag) : wordOf(*each.tag)) + '\n';
    }
  }

  const bool names_;
  const bool json_;
  const bool colours_;
  const qx::Ref<qx::MutableArray> records_ = qx::MutableArray::init();
  std::string lines_;
};

// Before anything is changed that could not be told of.
void requireJsonName(const std::string& path) {
  if (!isValidUtf8(path)) throw Failure("JSON has no form for a name that is not UTF-8: " + path);
}

// What was to be removed and was nowhere.
void tellOfMissed(const Tags& missed, const std::vector<std::string>& files) {
  for (const Tag& tag : missed) {
    const std::string name = tag->name()->utf8();
    const bool mayMeanColour = name.find(':') != std::string::npos;
    tell((files.size() == 1 ? files[0] + " has no tag " : "no file has the tag ") + name +
         (mayMeanColour ? "; --remove takes the name alone, without a colour" : ""));
  }
}

void runTags(const TagOptions& options) {
  const TagChange change = changeOf(options);
  Report report(options);
  std::vector<std::string> failures;
  Tags missed = change.removed;
  for (const std::string& path : options.files) {
    try {
      if (options.json) requireJsonName(path);
      const FileTags tags = changedTagsOf(path, change, missed);
      if (options.json || change.isNone()) report.add(path, tags);
    } catch (const Failure& failure) {
      failures.emplace_back(failure.what());
    }
  }
  // Where nothing was done, an empty list would only hide it.
  if (failures.size() < options.files.size()) report.show();
  for (const std::string& failure : failures) tell(failure);
  if (!failures.empty()) throw Exit{Failure::kFailed};
  tellOfMissed(missed, options.files);
  if (!missed.empty()) throw Exit{Failure::kNotFound};
}

std::function<void()> declareTags(CLI::App& app) {
  const auto options = std::make_shared<TagOptions>();
  app.add_option("FILE", options->files, "Files or folders")->type_name("")->required();
  const auto addWords = [&](const char* name, std::vector<std::string>& words, const char* form,
                            const char* purpose) {
    app.add_option(name, words, purpose)->type_name(form)->allow_extra_args(false);
  };
  addWords("--set", options->set, "NAME[:COLOUR]", "This tag instead of all; repeated: these");
  addWords("--add", options->add, "NAME[:COLOUR]",
           "This tag as well, or in place of the one of that name");
  addWords("--remove", options->remove, "NAME", "Not the tag of this name, which may hold colons");
  app.add_flag("--clear", options->clear, "No tags, also where those there cannot be read");
  app.add_flag("--json", options->json, "Show the tags as JSON, also when they were changed");
  return [options] { runTags(*options); };
}

}  // namespace

const Command kTagsCommand{
    "tags", "Show or change the coloured tags of files",
    "A COLOUR is a number, or grey, green, purple, blue, yellow, red or orange (1 to 7).\n"
    "Tags that cannot be read are left as they are, unless --clear gives them up. Where some of\n"
    "several files fail, the others are done all the same. Where no file has a tag that --remove\n"
    "names, the exit code is 1.\n"
    "\n"
    "Examples:\n"
    "  qx tags report.txt --add Work --add Urgent:red\n"
    "  qx tags report.txt letter.txt\n"
    "  qx tags report.txt --remove Urgent\n"
    "  qx tags report.txt letter.txt --set Done:green --json\n"
    "  qx tags letter.txt --clear",
    &declareTags};

}  // namespace qxtool
