// Extended attributes of files: names with bytes, or with property values.
//
//     auto file = qx::URL::fileURLWithPath("/data/report.txt");
//     qx::Ref<qx::Error> error;
//     if (!setExtendedAttributeValue(file, qx::array("a", 1), "org.example.state", &error))
//       show(error->localizedDescription());
//     auto value = valueOfExtendedAttributeWithName(file, "org.example.state", &error);
//
// On a symbolic link the link itself is meant. A name is stored with "user." in front, as the
// system wants it, unless it already names a namespace ("user.", "trusted.", "security.",
// "system."). Property values are stored as binary property lists, and read in any format.
//
// A failure of the system is an error of NSPOSIXErrorDomain with the system's code, a description,
// the URL and the attribute's name. ENODATA: there is no such attribute. ENAMETOOLONG: a name of
// more than 255 bytes as it is stored. E2BIG: a value that the file system can not hold, although
// there is room on the volume. Places for an error may be null. A nil URL gives nil or false.
// Thread-safe.
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/url.h>

namespace qx {

// Codes of QXExtendedAttributesErrorDomain.
//
// A value that is no property list: the user information has the name (QXExtendedAttributeNameKey),
// and the value under "value".
inline constexpr int kAttributeValueNotSerializable = 1968;
// Several attributes of one call failed: the user information has the URL, and the single errors in
// the order in which they arose (QXUnderlyingErrorsKey).
inline constexpr int kSeveralAttributesFailed = 1969;

// The attribute's bytes; nil and an error where there are none to be had. The path of any URL is
// taken as that of a file. A nil or empty name raises InvalidArgumentException.
QX_EXPORT Ref<Data> dataForExtendedAttribute(In<URL> url, StringArg name,
                                             Ref<Error>* error = nullptr);
// Creates or replaces the attribute. URLs and names as above; nil data raises.
QX_EXPORT bool setExtendedAttributeData(In<URL> url, In<Data> data, StringArg name,
                                        Ref<Error>* error = nullptr);

// Creates or replaces the attributes, each with its value, in the dictionary's order; those that
// fail do not keep the others from being written. One failure is the error itself, several are
// gathered in one of code kSeveralAttributesFailed. WITHOUT A PLACE FOR AN ERROR THE RESULT IS
// ALWAYS TRUE. An empty name raises InvalidArgumentException when its turn comes, unless its value
// can not be stored; a URL that is no file URL raises InternalInconsistencyException, here and
// below.
QX_EXPORT bool setExtendedAttributes(In<URL> url, In<Dictionary> attributes,
                                     Ref<Error>* error = nullptr);
// The value that the attribute holds; nil and an error where there is none, or where it is no
// property list. A nil or empty name raises InvalidArgumentException.
QX_EXPORT PropertyValue valueOfExtendedAttributeWithName(In<URL> url, StringArg name,
                                                         Ref<Error>* error = nullptr);
// As setExtendedAttributes for one value; nil removes the attribute.
QX_EXPORT bool setExtendedAttributeValue(In<URL> url, const PropertyValue& value, StringArg forName,
                                         Ref<Error>* error = nullptr);
// True also where there was no such attribute. URLs and names as for reading a value.
QX_EXPORT bool removeExtendedAttributeWithName(In<URL> url, StringArg name,
                                               Ref<Error>* error = nullptr);

// The names of the file's attributes in the system's order, as the operations above take them; nil
// and an error where the system does not tell.
QX_EXPORT Ref<Array> extendedAttributeNames(In<URL> url, Ref<Error>* error = nullptr);

}  // namespace qx
