#pragma once

// What stands before and behind the value of a property list as XML, as the library writes it.

namespace test_support {

inline constexpr char kXmlHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
inline constexpr char kXmlFoot[] = "</plist>\n";

}  // namespace test_support
