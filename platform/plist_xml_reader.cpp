// Property lists from XML.

#include <vector>

#include <QXFoundation/data.h>
#include <QXFoundation/date.h>

#include "frame/string_storage.h"
#include "platform/plist_builder.h"
#include "platform/plist_text.h"
#include "platform/plist_xml_scanner.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

using Kind = PlistTag::Kind;

std::string bracketed(PlistElement element) { return "<" + std::string(nameOf(element)) + ">"; }

class XmlReader {
 public:
  XmlReader(const XmlText& text, PropertyListMutability mutability)
      : scanner_(text), builder_(mutability) {}

  PropertyValue read() {
    const PlistTag root = scanner_.nextTag();
    if (root.element != PlistElement::plist || root.kind == Kind::close) {
      scanner_.fail(root.at, "the root element is not <plist>");
    }
    if (root.kind == Kind::empty) scanner_.fail(root.at, "there is no value");
    do {
      readTag(scanner_.nextTag());
    } while (!open_.empty());
    const PlistTag end = scanner_.nextTag();
    if (end.element != PlistElement::plist || end.kind != Kind::close) {
      scanner_.fail(end.at, "there is more than one value");
    }
    scanner_.finish();
    return std::move(values_.front());
  }

 private:
  // A container that is being read: what belongs to it stands on the stacks from there on.
  struct Open {
    PlistElement element;
    bool hasKey;  // its value has not come yet
    std::size_t firstValue;
    std::size_t firstKey;
    std::size_t firstPlace;  // of a key
    // Of a dictionary that looks like the one before so far: those keys, and how many have come.
    // They are not on the stack.
    const Shape* expected = nullptr;
    std::size_t expectedKeys = 0;
  };

  void readTag(const PlistTag& tag) {
    if (tag.kind == Kind::close) {
      close(tag);
    } else if (tag.element == PlistElement::key) {
      readKey(tag);
    } else if (!open_.empty() && open_.back().element == PlistElement::dict &&
               !open_.back().hasKey) {
      scanner_.fail(tag.at, bracketed(tag.element) + " stands where a <key> is expected");
    } else if (tag.element == PlistElement::plist) {
      scanner_.fail(tag.at, "<plist> stands where a value is expected");
    } else if (tag.element == PlistElement::array || tag.element == PlistElement::dict) {
      open(tag);
      if (tag.kind == Kind::empty) close(tag);
    } else {
      add(scalar(tag));
    }
  }

  void open(const PlistTag& tag) {
    if (open_.size() >= kMaxPropertyListDepth) {
      scanner_.fail(
          tag.at,
          "containers are nested more than " + std::to_string(kMaxPropertyListDepth) + " deep",
          PropertyListErrorCode::limitExceeded);
    }
    open_.push_back({tag.element, false, values_.size(), keys_.size(), keyPlaces_.size()});
    if (tag.element == PlistElement::dict) open_.back().expected = builder_.expected(open_.size());
  }

  void close(const PlistTag& tag) {
    if (open_.empty()) scanner_.fail(tag.at, "there is no value");
    Open& o = open_.back();
    if (o.element != tag.element) {
      scanner_.fail(tag.at, "</" + std::string(nameOf(tag.element)) + "> stands where </" +
                                std::string(nameOf(o.element)) + "> is expected");
    }
    if (o.hasKey) scanner_.fail(tag.at, "the last key has no value");
    PropertyValue made =
        o.element == PlistElement::array
            ? builder_.array(values_.data() + o.firstValue, values_.size() - o.firstValue)
            : dictionary(o);
    values_.resize(o.firstValue);
    open_.pop_back();
    add(std::move(made));
  }

  PropertyValue dictionary(Open& o) {
    const bool isExpected = o.expected != nullptr && o.expectedKeys == o.expected->slots();
    if (!isExpected) stopExpecting(o);
    const std::size_t count = keys_.size() - o.firstKey;
    const Ref<String>* keys = keys_.data() + o.firstKey;
    PropertyValue* values = values_.data() + o.firstValue;
    PropertyValue d = isExpected ? builder_.expectedDictionary(open_.size(), values)
                                 : builder_.dictionary(open_.size(), keys, values, count);
    if (d.isNil()) {
      const std::size_t repeated = firstRepeatedKey(keys, count);
      scanner_.fail(keyPlaces_[o.firstPlace + repeated],
                    "the key \"" + keys[repeated]->utf8().substr(0, 100) + "\" stands twice");
    }
    keys_.resize(o.firstKey);
    keyPlaces_.resize(o.firstPlace);
    return d;
  }

  void stopExpecting(Open& o) {
    if (o.expected == nullptr) return;
    for (std::size_t i = 0; i < o.expectedKeys; ++i) keys_.push_back(o.expected->key(i));
    o.expected = nullptr;
  }

  void add(PropertyValue v) {
    values_.push_back(std::move(v));
    if (!open_.empty()) open_.back().hasKey = false;
  }

  void readKey(const PlistTag& tag) {
    if (open_.empty() || open_.back().element != PlistElement::dict) {
      scanner_.fail(tag.at, "a <key> stands outside of a <dict>");
    }
    Open& o = open_.back();
    if (o.hasKey) scanner_.fail(tag.at, "a <key> stands where a value is expected");
    o.hasKey = true;
    keyPlaces_.push_back(tag.at);
    const std::string_view text = textOf(tag);
    if (o.expected != nullptr && o.expectedKeys < o.expected->slots() &&
        isKey(*o.expected->key(o.expectedKeys), text)) {
      ++o.expectedKeys;
    } else {
      stopExpecting(o);
      keys_.push_back(builder_.key(text));
    }
  }

  std::string_view textOf(const PlistTag& tag) {
    return tag.kind == Kind::empty ? std::string_view() : scanner_.text(tag.element);
  }

  PropertyValue scalar(const PlistTag& tag) {
    const std::string_view text = textOf(tag);
    const auto refuse = [&](const char* what) {
      scanner_.fail(tag.at, "the text of " + bracketed(tag.element) + " is no " + what);
    };
    switch (tag.element) {
      case PlistElement::string:
        return builder_.leaf(immutableString(text));
      case PlistElement::integer: {
        const PropertyValue n = plistInteger(trimmedXmlSpace(text));
        if (n.isNil()) refuse("integer of 64 bits");
        return n;
      }
      case PlistElement::real: {
        const std::optional<double> d = plistReal(trimmedXmlSpace(text));
        if (!d) refuse("number of the range of doubles");
        return *d;
      }
      case PlistElement::date: {
        const std::optional<double> seconds = plistDate(trimmedXmlSpace(text));
        if (!seconds) refuse("date of the form 2001-02-03T04:05:06Z");
        return Date::dateWithTimeIntervalSince1970(*seconds);
      }
      case PlistElement::data:
        bytes_.clear();
        if (!decodeBase64(text, bytes_)) refuse("data in base 64");
        return builder_.leaf(Data::from(bytes_));
      default:
        if (!trimmedXmlSpace(text).empty()) {
          scanner_.fail(tag.at, bracketed(tag.element) + " holds text");
        }
        return tag.element == PlistElement::yes;
    }
  }

  PlistXmlScanner scanner_;
  PlistBuilder builder_;
  std::vector<Open> open_;
  std::vector<PropertyValue> values_;
  std::vector<Ref<String>> keys_;
  std::vector<std::size_t> keyPlaces_;  // of each of keys_
  std::string bytes_;
};

}  // namespace

PropertyValue readXmlPlist(std::string_view bytes, PropertyListMutability mutability) {
  const XmlText text(bytes);
  return XmlReader(text, mutability).read();
}

}  // namespace qx::detail
