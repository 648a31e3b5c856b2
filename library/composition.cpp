// The one table of what the library consists of: its classes by name, and the operations that
// subsystems add to the classes of others. Referenced by name from the frame, so that static
// linking keeps it all.

#include "frame/composition.h"

#include <QXFoundation/array.h>
#include <QXFoundation/attributed_string.h>
#include <QXFoundation/character_set.h>
#include <QXFoundation/color_tag.h>
#include <QXFoundation/data.h>
#include <QXFoundation/data_cursor.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/file_manager.h>
#include <QXFoundation/formatter.h>
#include <QXFoundation/fraction_number.h>
#include <QXFoundation/notification_center.h>
#include <QXFoundation/number.h>
#include <QXFoundation/pointer_array.h>
#include <QXFoundation/port.h>
#include <QXFoundation/port_message.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/preferences_array.h>
#include <QXFoundation/preferences_controller.h>
#include <QXFoundation/preferences_dictionary.h>
#include <QXFoundation/process_info.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/run_loop.h>
#include <QXFoundation/set.h>
#include <QXFoundation/size_formatter.h>
#include <QXFoundation/sort_descriptor.h>
#include <QXFoundation/sort_ordering.h>
#include <QXFoundation/string.h>
#include <QXFoundation/thread_message.h>
#include <QXFoundation/timer.h>
#include <QXFoundation/tree.h>
#include <QXFoundation/url.h>
#include <QXFoundation/user_defaults.h>

#include "collections/added_operations.h"
#include "files/added_operations.h"
#include "frame/diagnostic_operations.h"
#include "ordering/added_operations.h"
#include "platform/added_operations.h"
#include "qualifiers/array_operations.h"
#include "values/date_operations.h"

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
    namedClass<ProcessInfo>("NSProcessInfo"),
    namedClass<Notification>("NSNotification"),
    namedClass<NotificationCenter>("NSNotificationCenter"),
    namedClass<UserDefaults>("NSUserDefaults"),
    namedClass<SortDescriptor>("NSSortDescriptor"),
    namedClass<QXQualifier>("QXQualifier"),
    namedClass<QXAndQualifier>("QXAndQualifier"),
    namedClass<QXOrQualifier>("QXOrQualifier"),
    namedClass<QXNotQualifier>("QXNotQualifier"),
    namedClass<QXKeyValueQualifier>("QXKeyValueQualifier"),
    namedClass<QXKeyComparisonQualifier>("QXKeyComparisonQualifier"),
    namedClass<QXQualifierVariable>("QXQualifierVariable"),
    namedClass<QXSortOrdering>("QXSortOrdering"),
    namedClass<Formatter>("NSFormatter"),
    namedClass<AttributedString>("NSAttributedString"),
    namedClass<QXFractionNumber>("QXFractionNumber"),
    namedClass<QXSizeFormatter>("QXSizeFormatter"),
    namedClass<QXDataCursor>("QXDataCursor"),
    namedClass<QXPreferences>("QXPreferences"),
    namedClass<QXPreferencesArray>("QXPreferencesArray"),
    namedClass<QXPreferencesDictionary>("QXPreferencesDictionary"),
    namedClass<QXPreferencesController>("QXPreferencesController"),
    namedClass<CharacterSet>("NSCharacterSet"),
    namedClass<PointerArray>("NSPointerArray"),
    namedClass<QXTree>("QXTree"),
    namedClass<FileManager>("NSFileManager"),
    namedClass<URL>("NSURL"),
    namedClass<QXColorTag>("QXColorTag"),
    namedClass<QXColorTagFormatter>("QXColorTagFormatter"),
    namedClass<Port>("NSPort"),
    namedClass<PortMessage>("NSPortMessage"),
    namedClass<Timer>("NSTimer"),
    namedClass<RunLoop>("NSRunLoop"),
    namedClass<QXThreadMessage>("QXThreadMessage"),
};

constexpr AddedOperations kAdded[] = {
    {"NSArray", &addFilterOperations},
    {"NSObject", &addDiagnosticOperations},
    {"NSProcessInfo", &addDebugSetOperation},
    {"NSObject", &addComparisonOperations},
    {"NSArray", &addSortedArrayOperations},
    {"NSMutableArray", &addSortingOperations},
    {"NSDate", &addDateOperations},
    {"NSArray", &addArrayOperations},
    {"NSMutableArray", &addMutableArrayOperations},
    {"NSDictionary", &addDictionaryOperations},
    {"NSString", &addStringOperations},
    {"NSMutableString", &addMutableStringOperations},
    {"NSPointerArray", &addPointerArrayOperations},
    {"NSString", &addPathOperations},
    {"NSFileManager", &addFileManagerOperations},
    {"NSURL", &addUrlOperations},
};

}  // namespace

std::span<const AddedOperations> addedOperations() { return kAdded; }
std::span<const NamedClass> libraryClasses() { return kClasses; }

}  // namespace qx::detail
