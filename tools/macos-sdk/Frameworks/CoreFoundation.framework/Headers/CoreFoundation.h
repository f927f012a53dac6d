// What this project uses of Core Foundation. See tools/macos-sdk/README.md.

#pragma once

#include <Availability.h>
#include <MacTypes.h>
#include <stddef.h>
#include <stdint.h>

#define CF_EXPORT extern "C"
#define CF_CONSUMED __attribute__((cf_consumed))
#define CF_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define CF_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
// The functions between these keep to the rules of Create, Copy and Get.
#define CF_IMPLICIT_BRIDGING_ENABLED _Pragma("clang arc_cf_code_audited begin")
#define CF_IMPLICIT_BRIDGING_DISABLED _Pragma("clang arc_cf_code_audited end")
#define CF_BRIDGED(Class) __attribute__((objc_bridge(Class)))
#define CF_BRIDGED_MUTABLE(Class) __attribute__((objc_bridge_mutable(Class)))

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef signed long CFIndex;
struct CFRange { CFIndex location, length; };
inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct CF_BRIDGED(NSString) __CFString* CFStringRef;
typedef const struct CF_BRIDGED(NSNumber) __CFBoolean* CFBooleanRef;
typedef const struct CF_BRIDGED(NSNumber) __CFNumber* CFNumberRef;
typedef const struct CF_BRIDGED(NSData) __CFData* CFDataRef;
typedef const struct CF_BRIDGED(NSURL) __CFURL* CFURLRef;
typedef const struct CF_BRIDGED(NSArray) __CFArray* CFArrayRef;
typedef struct CF_BRIDGED_MUTABLE(NSMutableArray) __CFArray* CFMutableArrayRef;
typedef const struct CF_BRIDGED(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef struct CF_BRIDGED_MUTABLE(NSMutableDictionary) __CFDictionary* CFMutableDictionaryRef;
typedef struct CF_BRIDGED(NSError) __CFError* CFErrorRef;
typedef struct __CFBundle* CFBundleRef;
typedef struct __CFRunLoop* CFRunLoopRef;

CF_IMPLICIT_BRIDGING_ENABLED
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);
CF_EXPORT Boolean CFEqual(CFTypeRef left, CFTypeRef right);

// Strings
typedef UInt32 CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
CF_EXPORT CFTypeID CFStringGetTypeID(void);
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar*, CFIndex count);
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
CF_EXPORT CFIndex CFStringGetBytes(
    CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
    Boolean isExternalRepresentation, UInt8* buffer, CFIndex capacity, CFIndex* used);

// Booleans, data
CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

// Arrays and dictionaries; the callback tables are used by address only.
struct CFArrayCallBacks;
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;
CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks*);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
CF_EXPORT CFDictionaryRef CFDictionaryCreate(
    CFAllocatorRef allocator, const void** keys, const void** values, CFIndex count,
    const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*);
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef, const void* key, const void* value);
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef, const void** keys, const void** all);

// URLs
CF_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef text, CFURLRef baseUrl);
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(
    CFAllocatorRef allocator, const UInt8* bytes, CFIndex length, Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCopyAbsoluteURL(CFURLRef url);
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(
    CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer, CFIndex capacity);

// Property lists
enum CFPropertyListFormat : CFIndex;
enum : CFOptionFlags { kCFPropertyListImmutable = 0 };
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithData(
    CFAllocatorRef, CFDataRef, CFOptionFlags, CFPropertyListFormat* format, CFErrorRef* error);

// Preferences
CF_ASSUME_NONNULL_BEGIN
CF_EXPORT const CFStringRef kCFPreferencesCurrentUser;
CF_EXPORT const CFStringRef kCFPreferencesAnyUser;
CF_EXPORT const CFStringRef kCFPreferencesCurrentHost;
CF_EXPORT const CFStringRef kCFPreferencesAnyHost;
CF_EXPORT CFPropertyListRef _Nullable CFPreferencesCopyValue(
    CFStringRef key, CFStringRef application, CFStringRef user, CFStringRef host);
CF_EXPORT void CFPreferencesSetValue(
    CFStringRef key, CFPropertyListRef _Nullable value, CFStringRef application, CFStringRef user,
    CFStringRef host);
CF_EXPORT Boolean CFPreferencesSynchronize(CFStringRef domain, CFStringRef user, CFStringRef host);
CF_ASSUME_NONNULL_END

// Bundles
CF_EXPORT CFBundleRef CFBundleGetMainBundle(void);
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
CF_EXPORT CFURLRef CFBundleCopyExecutableURL(CFBundleRef bundle);
CF_EXPORT CFURLRef CFBundleCopyResourceURL(
    CFBundleRef bundle, CFStringRef name, CFStringRef type, CFStringRef subdirectory);
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

// Run loop
CF_EXPORT CFRunLoopRef CFRunLoopGetMain(void);
CF_EXPORT void CFRunLoopRun(void);
CF_EXPORT void CFRunLoopStop(CFRunLoopRef loop);
CF_IMPLICIT_BRIDGING_DISABLED
