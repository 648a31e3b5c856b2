// The exported names of the platform: exceptions, error domains, keys of an error's user
// information, run loop modes. Literals, so that they can be compared and used as keys anywhere.
#pragma once

namespace qx {

// Names of the exceptions, as `Exception::name()` gives them; their classes are in exception.h.
inline constexpr char NSInvalidArgumentException[] = "NSInvalidArgumentException";
inline constexpr char NSInternalInconsistencyException[] = "NSInternalInconsistencyException";
inline constexpr char NSRangeException[] = "NSRangeException";
inline constexpr char NSGenericException[] = "NSGenericException";
inline constexpr char QXQualifierVariableSubstitutionException[] =
    "QXQualifierVariableSubstitutionException";

// Domains of errors (error.h). The code of the first is the value of `errno`.
inline constexpr char NSPOSIXErrorDomain[] = "NSPOSIXErrorDomain";
inline constexpr char QXExtendedAttributesErrorDomain[] = "XAExtendedAttributesErrorDomain";
inline constexpr char QXArchiveErrorDomain[] =
    "QXArchiveErrorDomain";  // code 1: damaged or foreign
inline constexpr char QXPropertyListErrorDomain[] =
    "QXPropertyListErrorDomain";  // see PropertyListErrorCode

// Keys of an error's user information.
inline constexpr char NSLocalizedDescriptionKey[] = "NSLocalizedDescription";  // a sentence of text
inline constexpr char NSURLErrorKey[] = "NSURL";                       // the file URL concerned
inline constexpr char QXUnderlyingErrorsKey[] = "XAUnderlyingErrors";  // an array of errors
inline constexpr char QXExtendedAttributeNameKey[] = "XAExtendedAttributeName";
// Where a property list is wrong, as numbers: the byte (binary), or line and column (XML).
inline constexpr char QXByteOffsetErrorKey[] = "QXByteOffset";  // from 0
inline constexpr char QXLineErrorKey[] = "QXLine";              // from 1
inline constexpr char QXColumnErrorKey[] = "QXColumn";          // characters, from 1

// The mode that a run loop runs in unless told otherwise.
inline constexpr char NSDefaultRunLoopMode[] = "NSDefaultRunLoopMode";

}  // namespace qx
