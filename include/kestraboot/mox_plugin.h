/// @file
/// The plugin kit: all that the author of a device plugin needs. It stands alone (C++11, no other header
/// of this system, no library to link with).
///
/// A device plugin is a 64-bit DLL with the extension ".mox" in the folder "moxplugins" below the
/// current directory of the boot executable. It exports one function, FxPluginMain(), which hands out an
/// object; the object is asked for two interfaces, IPluginDescriptor and ISourceManager, and through
/// them the host finds the plugin's device source and registers a callback. From then on the plugin
/// tells the callback of every device that arrives.
///
/// A DLL that the plugin imports is looked for beside the boot executable and where Windows finds its
/// own, never in "moxplugins". Without it the plugin is left out, and no line says so: link it in, or
/// load it yourself by its full path.
///
/// ### What the host does
///
/// 1. Once a minute until it succeeds it loads "nokiamanager.mox", makes and releases its source
///    manager, shuts it down and unloads it. No other plugin is loaded before that. The name alone
///    counts: neither the identifier nor the category of that plugin is looked at.
/// 2. The scan: it loads every plugin of the folder, makes a source manager of each and asks for its
///    category, releases them, shuts every plugin down and unloads it. A plugin whose category is
///    kDeviceSourceCategory is a device source. Plugins that come later are not seen until the host
///    process starts again.
/// 3. For each device source, on a thread of its own, it loads the plugin again, makes a source manager,
///    registers a callback, and then serves a hidden window of that thread. The plugin stays loaded
///    until the process ends. What fails here is not tried again, and no line says so.
/// 4. The process ends, and the plugin is not asked: see "The end of the process".
///
/// To *load* is: FxPluginMain; Query for interface 1; GetValue, GetIdentifier, GetName; SetListEntry;
/// both objects released. A plugin with an identifier that is listed already is released and unloaded
/// before SetListEntry. To *shut down* is: FxPluginMain; Query for interface 1; ShutDown; both objects
/// released; FreeLibrary. To *make a source manager* is: FxPluginMain; Query for interface 13; the first
/// object released. So FxPluginMain is called often, and a plugin may be loaded, shut down and loaded
/// again in one process.
///
/// ### Binary contract
///
/// Every object is a pointer to a table of function pointers. The number before each operation is its
/// position in the table, from 0; operations are never overloaded and there is no virtual destructor, so
/// MSVC, GCC and Clang lay the tables out alike. 64-bit Windows has one calling convention. Text is
/// UTF-16 in fixed fields of 260 characters, cut at 259 and terminated by zero.
///
/// ### Ownership
///
/// Objects are reference counted. Whoever is given an object through an output (FxPluginMain, Query)
/// owns one reference and releases it. An argument is only lent for the call: a plugin that keeps the
/// callback adds a reference of its own, and releases it when the callback is unregistered. Memory is
/// never freed across the boundary: what a plugin is to fill is the caller's.
///
/// ### Threads
///
/// Until its callback is registered a plugin is called by one thread at a time, though not always by the
/// same; registering and unregistering happen on the thread of its source. The callback may be called
/// from any thread and from many at once, from inside RegisterCallback, and under the plugin's own
/// locks: the host holds no lock of its own while it calls an operation. (A DllMain runs under the lock
/// of Windows' loader, as everywhere: do nothing there.) The callback may stay busy for as long as the
/// application takes that is being told. The host waits for a slow plugin; it has no time limit.
///
/// The thread of a source takes nothing from its message queue but WM_DEVICECHANGE for the host's own
/// window. What is sent to a window that the plugin makes on that thread arrives; what is posted to it
/// never does, nor does a timer's message. A plugin that needs them, or the calls that come into a
/// single-threaded COM apartment, makes a thread of its own with a message loop.
///
/// ### The end of the process
///
/// At log-off, and wherever else the boot executable ends, **neither UnregisterCallback nor ShutDown is
/// called.** It ends in one of two ways, and a plugin must be right with both:
///
/// - kestraboot.exe that is asked to end, as at log-off, terminates itself: no code of the plugin runs
///   any more, and its static objects are not destroyed.
/// - ExitProcess, which the library calls when no application is left, and another maker's host perhaps
///   at log-off: Windows ends all other threads where they are, whatever lock they hold, and then
///   destroys the static objects of the plugin. A static object that owns a thread does harm there: a
///   std::thread that nobody joined calls std::terminate, and the process ends with 3 instead of 0; a
///   destructor that takes a lock, or waits for an answer, waits for a thread that is gone.
///
/// So:
///
///
/// - The object that owns a thread is made with `new` and not deleted at the end: by nobody, as in
///   `Plugin& plugin = *new Plugin;`, or with its last reference, which the host keeps until the end, as
///   in samples/mox_plugin. Such memory goes with the process.
/// - Do not detach the thread instead: it must have ended before ShutDown returns, because the library
///   is freed then.
/// - Store what must outlive the session when it changes. There is no last call to do it in.
///
/// ### Failures
///
/// Operations answer a status. An exception may leave an operation: the host catches it, takes it as
/// kException and carries on. (That needs the C++ runtime that the host uses, as a DLL; with another
/// one, let nothing out.) Better is to let nothing out at all. Host and plugins share one process. What
/// cannot be contained there: an access violation or any other fault in a plugin, on whatever thread,
/// ends the whole host, and with it the detection of every other device. So does a write past the memory
/// that an operation was given, a stack overflow, a call of exit or abort, an exception that leaves one
/// of the plugin's own threads, the use of an object after its last reference was released, and code
/// that still runs in the plugin after ShutDown has returned. A call that never returns stops the thread
/// that made it: in the scan, all detection through plugins.
#pragma once

#include <cstddef>
#include <cstdint>

/// What is this system's own and not part of the exported classes.
namespace kestraboot
{
/// The plugin kit.
namespace mox
{

// ---- Status codes

/// What every operation but those of reference counting answers. Anything but kSuccess is a failure.
typedef std::uint32_t Status;

constexpr Status kSuccess = 0;                        ///< done
constexpr Status kNotListed = 0x40000001u;            ///< no listed plugin has that identifier
constexpr Status kFailure = 0xC0000002u;              ///< any failure without a code of its own
constexpr Status kException = 0xC0000005u;            ///< an exception was caught
constexpr Status kOutOfMemory = 0xC0000006u;          ///< memory could not be had
constexpr Status kBadArgument = 0xC000000Au;          ///< a bad argument, or something was not found
constexpr Status kNoEnumerator = 0xC000000Bu;         ///< the enumerator of sources could not be made
constexpr Status kSourceManagerNotOpen = 0xC000000Cu; ///< the plugin is listed, its manager is not open
constexpr Status kEndOfEnumeration = 0xD0000001u;     ///< every entry was given

// ---- Interface numbers

/// What Query is asked for.
typedef std::uint32_t InterfaceNumber;

constexpr InterfaceNumber kFxBaseNumber = 0;            ///< IFxBase; the host asks no plugin for it
constexpr InterfaceNumber kPluginDescriptorNumber = 1;  ///< IPluginDescriptor
constexpr InterfaceNumber kEnumNumber = 8;              ///< IEnum, of the host's enumerator
constexpr InterfaceNumber kEnumSourceManagerNumber = 9; ///< IEnumSourceManager, of the host's enumerator
constexpr InterfaceNumber kSourceManagerNumber = 13;    ///< ISourceManager

// ---- Values

constexpr std::size_t kFieldLength = 260; ///< characters of a fixed text field, the terminator included

/// The category of a source manager that is a device source: the host tracks those and no others.
constexpr std::uint32_t kDeviceSourceCategory = 1;

/// DeviceRecord::eventCode of an arrival; a record with any other code is ignored.
constexpr std::uint32_t kDeviceArrived = 0;

/// DeviceRecord::mobileReady of a mobile device that can be used now.
constexpr std::uint32_t kMobileReady = 1;

/// @name Kinds of device
/// DeviceRecord::deviceKind, and the word that reaches the application. 8, 9 and whatever is not in this
/// list are "unknown" too.
/// @{
constexpr std::uint32_t kKindUnknown = 0; ///< "unknown"
constexpr std::uint32_t kKindCamera = 1;  ///< "camera"
constexpr std::uint32_t kKindMobile = 2;  ///< "mobile"; reported only while mobileReady is kMobileReady
constexpr std::uint32_t kKindScanner = 3; ///< "scanner"
constexpr std::uint32_t kKindVideo = 4;   ///< "video"
constexpr std::uint32_t kKindAudio = 5;   ///< "audio"
constexpr std::uint32_t kKindVolume = 6;  ///< "volume"
constexpr std::uint32_t kKindArchive = 7; ///< "archive"
/// @}

// ---- Records
// Little-endian, without packing: every field lies where its own alignment puts it.

static_assert(sizeof(wchar_t) == 2, "text fields are UTF-16: build for Windows");

/// Identifies a plugin and its source; laid out like GUID of Windows' guiddef.h. Make one for each
/// plugin.
struct Identifier {
    std::uint32_t data1;   ///< the first group of a GUID's text
    std::uint16_t data2;   ///< the second
    std::uint16_t data3;   ///< the third
    std::uint8_t data4[8]; ///< the other two, in the order in which they are written
};
static_assert(sizeof(Identifier) == 16 && alignof(Identifier) == 4, "16 bytes");

/// The host's list entry of a loaded plugin. Filled by the host from what the plugin answers.
struct PluginDescriptor {
    std::uint32_t value;              ///< from GetValue
    Identifier identifier;            ///< from GetIdentifier
    wchar_t name[kFieldLength];       ///< from GetName
    wchar_t modulePath[kFieldLength]; ///< as it was loaded, relative to the current directory
};
static_assert(sizeof(PluginDescriptor) == 1060, "1060 bytes");
static_assert(offsetof(PluginDescriptor, value) == 0, "");
static_assert(offsetof(PluginDescriptor, identifier) == 4, "");
static_assert(offsetof(PluginDescriptor, name) == 20, "");
static_assert(offsetof(PluginDescriptor, modulePath) == 540, "");

/// One source, as the host's enumerator gives it. The caller sets version and size and clears the rest;
/// the enumerator writes name, value and identifier.
struct SourceInfo {
    std::uint32_t version;      ///< kSourceInfoVersion
    std::uint32_t reserved4;    ///< not used
    std::uint32_t size;         ///< kSourceInfoSize
    std::uint32_t reserved12;   ///< not used
    wchar_t name[kFieldLength]; ///< of the plugin
    std::uint32_t value;        ///< of the plugin
    Identifier identifier;      ///< of the plugin
    std::uint32_t reserved556;  ///< not used
};
constexpr std::uint32_t kSourceInfoVersion = 1; ///< SourceInfo::version
constexpr std::uint32_t kSourceInfoSize = 560;  ///< SourceInfo::size, in bytes
static_assert(sizeof(SourceInfo) == kSourceInfoSize, "560 bytes");
static_assert(offsetof(SourceInfo, version) == 0, "");
static_assert(offsetof(SourceInfo, reserved4) == 4, "");
static_assert(offsetof(SourceInfo, size) == 8, "");
static_assert(offsetof(SourceInfo, reserved12) == 12, "");
static_assert(offsetof(SourceInfo, name) == 16, "");
static_assert(offsetof(SourceInfo, value) == 536, "");
static_assert(offsetof(SourceInfo, identifier) == 540, "");
static_assert(offsetof(SourceInfo, reserved556) == 556, "");

/// A device that arrived, as the plugin tells the callback. The plugin fills it; clear all of it first.
struct DeviceRecord {
    std::uint32_t eventCode;  ///< kDeviceArrived
    std::uint32_t reserved4;  ///< not used
    std::uint32_t size;       ///< kDeviceRecordSize
    std::uint32_t reserved12; ///< not used
    /// What the application is told, next to the kind: at most 259 characters and a terminating zero. It
    /// is passed on as it stands; the host looks for nothing under it.
    ///
    /// | deviceKind | what an application expects |
    /// |---|---|
    /// | kKindVolume | the drive, "E:". The host does not look for pictures there |
    /// | kKindCamera, kKindScanner | the device's name in Windows' own imaging services |
    /// | any other | a name by which the application that is meant for the device finds it |
    ///
    /// Empty: the application is started without a device, and is not told the kind either. One that
    /// begins with a double quote is put on the command line without further quotes.
    wchar_t deviceId[kFieldLength];
    wchar_t text536[kFieldLength];  ///< carried, not used
    wchar_t text1056[1024];         ///< carried, not used
    wchar_t text3104[kFieldLength]; ///< carried, not used
    std::uint32_t deviceKind;       ///< one of the kinds above
    std::uint32_t value3628;        ///< carried, not used
    Identifier identifier;          ///< carried, not used
    std::uint32_t mobileReady;      ///< kMobileReady, or the device is not ready; for kKindMobile only
    std::uint32_t reserved3652;     ///< not used
};
constexpr std::uint32_t kDeviceRecordSize = 3656; ///< DeviceRecord::size, in bytes
static_assert(sizeof(DeviceRecord) == kDeviceRecordSize, "3656 bytes");
static_assert(offsetof(DeviceRecord, eventCode) == 0, "");
static_assert(offsetof(DeviceRecord, reserved4) == 4, "");
static_assert(offsetof(DeviceRecord, size) == 8, "");
static_assert(offsetof(DeviceRecord, reserved12) == 12, "");
static_assert(offsetof(DeviceRecord, deviceId) == 16, "");
static_assert(offsetof(DeviceRecord, text536) == 536, "");
static_assert(offsetof(DeviceRecord, text1056) == 1056, "");
static_assert(offsetof(DeviceRecord, text3104) == 3104, "");
static_assert(offsetof(DeviceRecord, deviceKind) == 3624, "");
static_assert(offsetof(DeviceRecord, value3628) == 3628, "");
static_assert(offsetof(DeviceRecord, identifier) == 3632, "");
static_assert(offsetof(DeviceRecord, mobileReady) == 3648, "");
static_assert(offsetof(DeviceRecord, reserved3652) == 3652, "");

// ---- Interfaces that both sides have

/// The base of every object.
///
/// An object with two of the interfaces below has two tables, and each begins with these operations.
/// Hand out either where an IFxBase is asked for (FxPluginMain, interface 0): the host calls Query and
/// Release there and nothing else. Both tables answer alike and count the same references.
class IFxBase
{
public:
    /// 0: asks for another interface of the object. Writes it, with a reference added, and answers true;
    /// or writes null and answers false (but see ICallbackInterface). Write the very pointer of the
    /// interface asked for:
    /// `*object = static_cast<ISourceManager*>(this)`.
    ///
    /// @param[in] number the interface, such as kSourceManagerNumber
    /// @param[out] object receives the object; the caller releases it
    /// @return whether the object has that interface
    virtual bool Query(InterfaceNumber number, void** object) = 0;
    /// 1: adds a reference. Any thread.
    ///
    /// @return the new count, for diagnosis only
    virtual std::uint32_t AddReference() = 0;
    /// 2: releases one; at none left the object frees itself. Any thread.
    ///
    /// @return the remaining count
    virtual std::uint32_t Release() = 0;

protected:
    ~IFxBase() = default; // through Release alone
};

/// The host's end of a device source. One belongs to each source. It has no other interface: its Query
/// answers false to every number and, unlike a plugin's, leaves `*object` as it was. Set that to null
/// before, or look at the answer alone.
class ICallbackInterface : public IFxBase
{
public:
    /// 3: tells of a device. Any thread; calls to one callback are taken one after the other, and the
    /// call returns when the application has been told. Nothing is thrown.
    ///
    /// Each call is a report: one device told of twice starts the application twice. Tell once for each
    /// arrival.
    ///
    /// @param[in] unused not looked at
    /// @param[in] record the plugin's; copied before the call returns
    /// @return kSuccess, also for a record that reports nothing (another event code, another size, a
    /// mobile
    ///     device that is not ready). kBadArgument: no record. kOutOfMemory: the report is lost
    virtual Status Notify(std::uint64_t unused, const DeviceRecord* record) = 0;

protected:
    ~ICallbackInterface() = default;
};

// ---- Interfaces that a plugin implements

/// Interface 1: what the plugin is. Asked of the object that FxPluginMain gives.
///
/// Of GetValue, GetIdentifier, GetName, SetListEntry and ShutDown the host does not read the status: it
/// goes on with what was written, and what was not written is zero. A second plugin without an
/// identifier of its own is therefore refused, like any identifier that is listed already.
class IPluginDescriptor : public IFxBase
{
public:
    /// 3: writes the plugin's name. It stands in the trace line by which the host says that the source
    /// is being tracked.
    ///
    /// @param[out] name at most `capacity` - 1 characters and a terminating zero
    /// @param[in] capacity the room there, in characters; the host gives 260
    /// @return not read
    virtual Status GetName(wchar_t* name, std::uint32_t capacity) = 0;
    /// 4: writes a number of the plugin's own.
    ///
    /// @param[out] value kept with the plugin and not used
    /// @return not read
    virtual Status GetValue(std::uint32_t* value) = 0;
    /// 5: writes the plugin's identifier.
    ///
    /// @param[out] identifier the same each time, and no other plugin's
    /// @return not read
    virtual Status GetIdentifier(Identifier* identifier) = 0;
    /// 6: hands over the host's entry of this plugin.
    ///
    /// @param[in] entry the host's; not to be written; valid until ShutDown returns
    /// @return not read
    virtual Status SetListEntry(const PluginDescriptor* entry) = 0;
    /// 7: the library is about to be freed. End every thread of the plugin before you return. Not called
    /// when the process ends.
    ///
    /// @return not read
    virtual Status ShutDown() = 0;

protected:
    ~IPluginDescriptor() = default;
};

/// Interface 13: the source manager. Asked of the object that FxPluginMain gives, which makes the source
/// manager, and then of the source manager itself, before its category is read.
class ISourceManager : public IFxBase
{
public:
    /// 3: not called by this host.
    /// @return kFailure
    virtual Status Reserved3() { return kFailure; }
    /// 4: writes the category.
    ///
    /// @param[out] category kDeviceSourceCategory for a source of devices
    /// @return after a failure the source is not tracked
    virtual Status GetCategory(std::uint32_t* category) = 0;
    /// 5: not called by this host.
    /// @return kFailure
    virtual Status Reserved5() { return kFailure; }
    /// 6: from now on the plugin tells `callback` of every device that arrives, and at once, if it
    /// likes, of those that are there already.
    ///
    /// Asked once: after a failure the source is not tracked until the host process starts again, and
    /// no line says so. Where devices or a service are not ready yet, answer kSuccess and tell of
    /// devices when they come.
    ///
    /// @param[in] callback lent for the call; add a reference to keep it
    /// @return after a failure the source is not tracked
    virtual Status RegisterCallback(ICallbackInterface* callback) = 0;
    /// 7: ends that, in a process that goes on, such as where no window can be made for the source. Not
    /// called when the process ends. Two rules:
    ///
    /// - **Stop.** After this returns the plugin begins no call of the callback. End the threads that
    ///   tell, and wait for them: the host holds no lock here that a call could wait for.
    /// - **Give back.** Release the reference that RegisterCallback added, after the last call has
    ///   returned. A thread that cannot be waited for needs a reference of its own, which it releases
    ///   after its last call; until then that call is safe, and still reported.
    ///
    /// @param[in] callback the one that was registered
    /// @return kSuccess, or what went wrong
    virtual Status UnregisterCallback(ICallbackInterface* callback) = 0;

protected:
    ~ISourceManager() = default;
};

// ---- Interfaces of the host's enumerator, by which it walks its own list; no plugin needs them

/// Interface 8: a walk over entries. One thread at a time; reference counting from any thread.
class IEnum : public IFxBase
{
public:
    /// 3: writes how many entries there are.
    ///
    /// @param[out] count the number
    /// @return kSuccess. kBadArgument: no output
    virtual Status GetCount(std::uint32_t* count) = 0;
    /// 4: fills the caller's record from the current entry and goes on to the next.
    ///
    /// @param[in,out] info the caller's; its version and size are set before the call
    /// @return kSuccess. kEndOfEnumeration: there is no entry left. kBadArgument: no record, or its
    /// version or
    ///     size is another; nothing was written
    virtual Status Next(SourceInfo* info) = 0;
    /// 5: back to the first entry.
    ///
    /// @return kSuccess
    virtual Status Reset() = 0;

protected:
    ~IEnum() = default;
};

/// Interface 9: the entries are the sources of the listed plugins, in the order in which those were
/// loaded.
class IEnumSourceManager : public IEnum
{
protected:
    ~IEnumSourceManager() = default;
};

// ---- The entry point

/// The type of FxPluginMain, below.
typedef Status (*PluginMain)(IFxBase** object);

} // namespace mox
} // namespace kestraboot

extern "C" {

/// The one function that a plugin exports.
///
/// @param[out] object receives an object with one reference for the caller; null means that the plugin
/// does
///     not want to be loaded
/// @return not read: the host looks at the object
__declspec(dllexport) kestraboot::mox::Status FxPluginMain(kestraboot::mox::IFxBase** object);
}
