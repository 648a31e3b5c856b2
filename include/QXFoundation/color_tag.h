// QXColorTag: the named, coloured tags that people give their files.
//
//     auto file = qx::URL::fileURLWithPath("/data/report.txt");
//     setColorTags(file, qx::array(qx::QXColorTag::colorTagWithName("Work", 6)), &error);
//     auto tags = colorTagsWithError(file);      // nil where the file has none
//     if (tags) for (const auto& tag : *tags) use(tag.as<qx::QXColorTag>()->name());
//
// They are kept in the extended attribute kColorTagsAttribute as an array of strings, one for each
// tag: its name, and where it has a colour a line feed and the colour's number. The desktop's
// colours: 0 none, 1 grey, 2 green, 3 purple, 4 blue, 5 yellow, 6 red, 7 orange.
#pragma once

#include <cstdint>

#include <QXFoundation/error.h>
#include <QXFoundation/formatter.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>
#include <QXFoundation/url.h>

namespace qx {

// The extended attribute that holds a file's tags.
inline constexpr char kColorTagsAttribute[] = "com.apple.metadata:_kMDItemUserTags";

// A tag. The class is "QXColorTag"; "name" and "color" are its keys. Belongs to one thread at a
// time. The hash is that of the object: tags that are equal may differ in it.
class QX_EXPORT QXColorTag : public Object {
 public:
  // The name is kept exactly as given.
  static Ref<QXColorTag> colorTagWithName(StringArg name, std::int32_t andColor);
  static Ref<QXColorTag> initWithName(StringArg name, std::int32_t andColor);

  // What the tag was made with, or given since.
  const Ref<String>& name() const { return name_; }
  std::int32_t color() const { return color_; }
  // Keeps the name in its canonical decomposition (normal form D).
  void setName(StringArg name);
  void setColor(std::int32_t color) { color_ = color; }

  // Equal are tags of one colour whose names are the same in lower case.
  bool isEqual(const PropertyValue& other) const override;
  // "name (colour)"
  std::string description() const override;
  // A new tag with the same name and colour, a QXColorTag also when this is of a subclass.
  Ref<Object> copy() const override;

  // For subclasses; tags are made by the functions above.
  QXColorTag(StringArg name, std::int32_t color) : name_(name.string()), color_(color) {}

 protected:
  ~QXColorTag() override;

 private:
  Ref<String> name_;
  std::int32_t color_;
};

// Tags to their names and back. The class is "QXColorTagFormatter". Thread-safe.
class QX_EXPORT QXColorTagFormatter : public Formatter {
 public:
  // A new formatter; all are alike.
  static Ref<QXColorTagFormatter> init();

  // The name of a tag; anything else as it is.
  PropertyValue stringForObjectValue(const PropertyValue& value) const override;
  // Stores a tag without a colour whose name is the string, and gives true. The place for the tag
  // must be given (InvalidArgumentException); there is never a text about an error.
  bool getObjectValue(PropertyValue* object, StringArg forString,
                      Ref<String>* errorDescription) const override;
};

QX_EXPORT const Class& classObject(detail::Type<QXColorTag>);
QX_EXPORT const Class& classObject(detail::Type<QXColorTagFormatter>);

// The file's tags in their order; nil where there are none or they can not be read, of which
// nothing is told in `error`. What stands behind a second line feed in a stored string is ignored,
// and a colour that is no number is 0. A stored value that is no array of strings raises
// InvalidArgumentException and stays as it is; a URL that is no file URL raises
// InternalInconsistencyException. A nil URL gives nil.
QX_EXPORT Ref<Array> colorTagsWithError(In<URL> url, Ref<Error>* error = nullptr);

// Stores the tags in place of those there are; nil takes the attribute away, an empty array is
// stored as such. Result, errors and exceptions as those of setExtendedAttributeValue
// (extended_attributes.h): without a place for an error, storing gives true in any case. An element
// that is no tag raises InvalidArgumentException, and nothing is stored.
QX_EXPORT bool setColorTags(In<URL> url, In<Array> tags, Ref<Error>* error = nullptr);

}  // namespace qx
