// The one table of what the library consists of: its classes by name, and the operations that
// subsystems add to the classes of others. Referenced by name from the frame, so that static
// linking keeps it all.

#include "frame/composition.h"

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/number.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

namespace qx::detail {

const Class& nullClass();

namespace {

constexpr NamedClass kClasses[] = {
    namedClass<Object>("NSObject"),
    namedClass<Class>("Class"),
    {"NSNull", &nullClass},
    namedClass<String>("NSString"),
    namedClass<MutableString>("NSMutableString"),
    namedClass<Number>("NSNumber"),
    namedClass<DecimalNumber>("NSDecimalNumber"),
    namedClass<Data>("NSData"),
    namedClass<MutableData>("NSMutableData"),
    namedClass<Date>("NSDate"),
    namedClass<Array>("NSArray"),
    namedClass<MutableArray>("NSMutableArray"),
    namedClass<Dictionary>("NSDictionary"),
    namedClass<MutableDictionary>("NSMutableDictionary"),
    namedClass<Set>("NSSet"),
    namedClass<MutableSet>("NSMutableSet"),
    namedClass<Error>("NSError"),
};

}  // namespace

std::span<const AddedOperations> addedOperations() { return {}; }
std::span<const NamedClass> libraryClasses() { return kClasses; }

}  // namespace qx::detail
