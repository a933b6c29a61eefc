/// @file
/// The plugin kit. The author of a device plugin needs no other header of this system (C++11) and no
/// library to link with.
///
/// A device plugin is a 64-bit DLL with the extension ".mox". It is in the folder "moxplugins" below the
/// current directory of the boot executable. It exports one function, FxPluginMain(), which returns an
/// object. The host asks that object for two interfaces, IPluginDescriptor and ISourceManager. Through
/// them the host finds the plugin's device source and registers a callback. From then on the plugin
/// reports every device that arrives to the callback.
///
/// Windows searches for a DLL that the plugin imports in the folder of the boot executable and in its
/// own folders, never in "moxplugins". If Windows does not find the DLL, the host skips the plugin
/// without a trace line. Link such a DLL statically, or load it yourself by its full path.
///
/// ### Steps of the host
///
/// 1. Once a minute until it succeeds, the host loads "nokiamanager.mox", makes and releases its source
///    manager, shuts it down and unloads it. It loads no other plugin before that. Only the file name
///    counts: the host ignores the identifier and the category of this plugin.
/// 2. The scan: the host loads every plugin of the folder, makes a source manager of each, asks for its
///    category and releases it; then it shuts every plugin down and unloads it. A plugin whose category
///    is kDeviceSourceCategory is a device source. The host finds a plugin that is copied into the
///    folder later only when the host process starts again.
/// 3. For each device source, on a thread of its own, the host loads the plugin again, makes a source
///    manager, registers a callback, and then serves a hidden window of that thread. The plugin stays
///    loaded until the process ends. If this step fails, the host neither tries again nor writes a
///    trace line.
/// 4. The process ends without a call of the plugin: see "The end of the process".
///
/// To *load* is: FxPluginMain; Query for interface 1; GetValue, GetIdentifier, GetName; SetListEntry;
/// release of both objects. If a listed plugin has the same identifier already, the host releases and
/// unloads the plugin before SetListEntry. To *shut down* is: FxPluginMain; Query for interface 1;
/// ShutDown; release of both objects; FreeLibrary. To *make a source manager* is: FxPluginMain; Query
/// for interface 13; release of the first object. So the host calls FxPluginMain often, and may load a
/// plugin, shut it down and load it again in one process.
///
/// ### Binary contract
///
/// Every object is a pointer to a table of function pointers. The number before each operation is its
/// position in the table, from 0. Operations are never overloaded and there is no virtual destructor, so
/// MSVC, GCC and Clang produce the same tables. 64-bit Windows has one calling convention. Text is
/// UTF-16 in fixed fields of 260 characters: at most 259 and a terminating zero.
///
/// ### Ownership
///
/// Objects are reference counted. The caller that gets an object through an output (FxPluginMain, Query)
/// owns one reference and releases it. An argument is borrowed for the call: a plugin that keeps the
/// callback adds a reference of its own, and releases it when the host unregisters the callback. Neither
/// side frees memory of the other: the caller owns every buffer that a plugin fills.
///
/// ### Threads
///
/// Until the callback is registered, one thread at a time calls the plugin, but not always the same one.
/// The host registers and unregisters on the thread of the plugin's source. The plugin may call the
/// callback from any thread, from many at once, from inside RegisterCallback and under its own locks:
/// the host holds no lock of its own while it calls an operation. (A DllMain runs under the lock of
/// Windows' loader, as everywhere: do nothing there.) A call of the callback can take as long as the
/// application needs. The host waits for a slow plugin without a time limit.
///
/// The thread of a source takes only WM_DEVICECHANGE for the host's own window from its queue. A window
/// that the plugin makes on that thread gets messages that are sent, but no posted message and no timer
/// message. A plugin that needs these, or the incoming calls of a single-threaded COM apartment, creates
/// a thread of its own with a message loop.
///
/// ### The end of the process
///
/// At log-off, and whenever else the boot executable ends, **neither UnregisterCallback nor ShutDown is
/// called.** The process ends in one of two ways, and a plugin must be correct in both:
///
/// - kestraboot.exe that is asked to quit, for example at log-off, terminates itself. No code of the
///   plugin runs any more, and its static objects are not destroyed.
/// - ExitProcess: the library calls it if no application is left, and another maker's host may call it
///   at log-off. Windows ends all other threads wherever they are, whatever lock they hold, and then
///   destroys the static objects of the plugin. A static object that owns a thread does harm there. A
///   std::thread that is not joined calls std::terminate, and the exit code is 3 instead of 0. A
///   destructor that takes a lock, or waits for an answer, waits for a thread that no longer exists.
///
/// Therefore:
///
/// - Create the object that owns a thread with `new` and never delete it at the end of the process. Let
///   nobody own it, as in `Plugin& plugin = *new Plugin;`, or let its last reference own it: the host
///   holds that until the end, as in samples/mox_plugin. Windows frees such memory with the process.
/// - Do not detach the thread instead. It must have ended before ShutDown returns, because the host then
///   frees the library.
/// - Store data that must outlive the session whenever it changes. There is no last call to store it in.
///
/// ### Failures
///
/// Operations return a status. An exception may leave an operation: the host catches it, treats it as
/// kException and continues. This works only if the plugin uses the host's C++ runtime, as a DLL; with
/// another runtime, let no exception out. It is best to let none out at all.
///
/// Host and plugins share one process. The host cannot contain these faults. Each can end the host, and
/// with it the detection of every other device:
///
/// - an access violation or any other fault in a plugin, on any thread, and a stack overflow;
/// - a write past the memory that an operation was given;
/// - a call of exit or abort;
/// - an exception that leaves one of the plugin's own threads;
/// - the use of an object after its last reference was released;
/// - code that still runs in the plugin after ShutDown has returned.
///
/// A call that never returns blocks the thread that made it. In the scan it blocks all detection through
/// plugins.
#pragma once

#include <cstddef>
#include <cstdint>

/// The parts of this system that are not exported classes.
namespace kestraboot
{
/// The plugin kit.
namespace mox
{

// ---- Status codes

/// The result of every operation except for reference counting. Every value other than kSuccess is a
/// failure.
typedef std::uint32_t Status;

constexpr Status kSuccess = 0;                        ///< done
constexpr Status kNotListed = 0x40000001u;            ///< no listed plugin has that identifier
constexpr Status kFailure = 0xC0000002u;              ///< any failure without a code of its own
constexpr Status kException = 0xC0000005u;            ///< an exception was caught
constexpr Status kOutOfMemory = 0xC0000006u;          ///< out of memory
constexpr Status kBadArgument = 0xC000000Au;          ///< a bad argument, or something was not found
constexpr Status kNoEnumerator = 0xC000000Bu;         ///< the enumerator of sources could not be created
constexpr Status kSourceManagerNotOpen = 0xC000000Cu; ///< the plugin is listed, its manager is not open
constexpr Status kEndOfEnumeration = 0xD0000001u;     ///< no further entry

// ---- Interface numbers

/// The number of an interface, for Query.
typedef std::uint32_t InterfaceNumber;

constexpr InterfaceNumber kFxBaseNumber = 0;            ///< IFxBase; the host asks no plugin for it
constexpr InterfaceNumber kPluginDescriptorNumber = 1;  ///< IPluginDescriptor
constexpr InterfaceNumber kEnumNumber = 8;              ///< IEnum, of the host's enumerator
constexpr InterfaceNumber kEnumSourceManagerNumber = 9; ///< IEnumSourceManager, of the host's enumerator
constexpr InterfaceNumber kSourceManagerNumber = 13;    ///< ISourceManager

// ---- Values

constexpr std::size_t kFieldLength = 260; ///< characters of a fixed text field, the terminator included

/// The category of a source manager that is a device source. The host tracks no other category.
constexpr std::uint32_t kDeviceSourceCategory = 1;

/// DeviceRecord::eventCode of an arrival. The host ignores a record with any other code.
constexpr std::uint32_t kDeviceArrived = 0;

/// DeviceRecord::mobileReady of a mobile device that is ready for use.
constexpr std::uint32_t kMobileReady = 1;

/// @name Kinds of device
/// DeviceRecord::deviceKind, and the word that the application gets. Every number that is not in this
/// list is "unknown" too.
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
// Little-endian, without packing: every field has its natural alignment.

static_assert(sizeof(wchar_t) == 2, "text fields are UTF-16: build for Windows");

/// Identifies a plugin and its source. The layout is that of GUID in Windows' guiddef.h. Generate a new
/// one for each plugin.
struct Identifier {
    std::uint32_t data1;   ///< the first group of a GUID's text
    std::uint16_t data2;   ///< the second
    std::uint16_t data3;   ///< the third
    std::uint8_t data4[8]; ///< the other two, in the order of the text
};
static_assert(sizeof(Identifier) == 16 && alignof(Identifier) == 4, "16 bytes");

/// The host's list entry of a loaded plugin. The host fills it with the plugin's answers.
struct PluginDescriptor {
    std::uint32_t value;              ///< from GetValue
    Identifier identifier;            ///< from GetIdentifier
    wchar_t name[kFieldLength];       ///< from GetName
    wchar_t modulePath[kFieldLength]; ///< as loaded, relative to the current directory
};
static_assert(sizeof(PluginDescriptor) == 1060, "1060 bytes");
static_assert(offsetof(PluginDescriptor, value) == 0, "");
static_assert(offsetof(PluginDescriptor, identifier) == 4, "");
static_assert(offsetof(PluginDescriptor, name) == 20, "");
static_assert(offsetof(PluginDescriptor, modulePath) == 540, "");

/// One source, from the host's enumerator. The caller sets version and size and clears the other fields;
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

/// A device that arrived. The plugin clears the whole record, fills it and passes it to the callback.
struct DeviceRecord {
    std::uint32_t eventCode;  ///< kDeviceArrived
    std::uint32_t reserved4;  ///< not used
    std::uint32_t size;       ///< kDeviceRecordSize
    std::uint32_t reserved12; ///< not used
    /// The identifier that the application gets, next to the kind: at most 259 characters and a
    /// terminating zero. The host passes it verbatim and looks nothing up by it.
    ///
    /// | deviceKind | an application expects |
    /// |---|---|
    /// | kKindVolume | the drive, "E:". The host does not scan it for pictures |
    /// | kKindCamera, kKindScanner | the device's name in Windows' own imaging services |
    /// | any other | a name by which the application for this device finds it |
    ///
    /// If it is empty, the application gets neither identifier nor kind. If it begins with a double
    /// quote, the command line has it without further quotes.
    wchar_t deviceId[kFieldLength];
    wchar_t text536[kFieldLength];  ///< copied, not used
    wchar_t text1056[1024];         ///< copied, not used
    wchar_t text3104[kFieldLength]; ///< copied, not used
    std::uint32_t deviceKind;       ///< one of the kinds above
    std::uint32_t value3628;        ///< copied, not used
    Identifier identifier;          ///< copied, not used
    std::uint32_t mobileReady;      ///< kKindMobile only; any other value: the device is not ready
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
/// Either table may serve as the IFxBase (FxPluginMain, interface 0): the host calls only Query and
/// Release there. Both tables return the same answers and count the same references.
class IFxBase
{
public:
    /// 0: asks for another interface of the object. If the object has it, adds a reference, writes the
    /// pointer and returns true; otherwise writes null and returns false (ICallbackInterface differs).
    /// Write the pointer of exactly that interface: `*object = static_cast<ISourceManager*>(this)`.
    ///
    /// @param[in] number the interface, such as kSourceManagerNumber
    /// @param[out] object receives the object; the caller releases it
    /// @return whether the object has that interface
    virtual bool Query(InterfaceNumber number, void** object) = 0;
    /// 1: adds a reference. Callable from any thread.
    ///
    /// @return the new count, for diagnosis only
    virtual std::uint32_t AddReference() = 0;
    /// 2: releases a reference. With the last one the object frees itself. Callable from any thread.
    ///
    /// @return the remaining count
    virtual std::uint32_t Release() = 0;

protected:
    ~IFxBase() = default; // only Release destroys an object
};

/// The host's callback. Each device source has one. It has no other interface: its Query returns false
/// for every number and, unlike a plugin's, leaves `*object` unchanged. Set `*object` to null before the
/// call, or check the result alone.
class ICallbackInterface : public IFxBase
{
public:
    /// 3: reports a device. Callable from any thread; the host serialises the calls to one callback. It
    /// returns after the host's own callback has returned, which starts the application. It throws
    /// nothing.
    ///
    /// Report each arrival once: two reports of one device start the application twice.
    ///
    /// @param[in] unused ignored
    /// @param[in] record owned by the plugin; copied before the call returns
    /// @return kSuccess, also for a record that the host ignores (another event code, another size, a
    ///     mobile device that is not ready). kBadArgument: no record. kOutOfMemory: the report is lost
    virtual Status Notify(std::uint64_t unused, const DeviceRecord* record) = 0;

protected:
    ~ICallbackInterface() = default;
};

// ---- Interfaces that a plugin implements

/// Interface 1: describes the plugin. The host asks the object of FxPluginMain for it.
///
/// The host does not read the status of GetValue, GetIdentifier, GetName, SetListEntry and ShutDown. It
/// uses the output, and an output that the plugin does not write is zero. The host refuses an identifier
/// that is listed already. So it refuses a second plugin that writes no identifier.
class IPluginDescriptor : public IFxBase
{
public:
    /// 3: writes the plugin's name. The host's trace line about a tracked source contains it.
    ///
    /// @param[out] name at most `capacity` - 1 characters and a terminating zero
    /// @param[in] capacity the size of `name` in characters; the host passes 260
    /// @return not read
    virtual Status GetName(wchar_t* name, std::uint32_t capacity) = 0;
    /// 4: writes a number that the plugin chooses.
    ///
    /// @param[out] value stored in the list entry, not used otherwise
    /// @return not read
    virtual Status GetValue(std::uint32_t* value) = 0;
    /// 5: writes the plugin's identifier.
    ///
    /// @param[out] identifier the same in each call, and different from every other plugin's
    /// @return not read
    virtual Status GetIdentifier(Identifier* identifier) = 0;
    /// 6: passes the host's list entry of this plugin.
    ///
    /// @param[in] entry owned by the host; read only; valid until ShutDown returns
    /// @return not read
    virtual Status SetListEntry(const PluginDescriptor* entry) = 0;
    /// 7: the host frees the library after this call. End every thread of the plugin before you return.
    /// The host does not call it when the process ends.
    ///
    /// @return not read
    virtual Status ShutDown() = 0;

protected:
    ~IPluginDescriptor() = default;
};

/// Interface 13: the source manager. The host asks the object of FxPluginMain for it, which creates the
/// source manager. Then it asks the source manager itself, before it reads the category.
class ISourceManager : public IFxBase
{
public:
    /// 3: not called by this host.
    /// @return kFailure
    virtual Status Reserved3() { return kFailure; }
    /// 4: writes the category.
    ///
    /// @param[out] category kDeviceSourceCategory for a source of devices
    /// @return after a failure the host does not track the source
    virtual Status GetCategory(std::uint32_t* category) = 0;
    /// 5: not called by this host.
    /// @return kFailure
    virtual Status Reserved5() { return kFailure; }
    /// 6: registers the callback. From now on the plugin reports every device that arrives to
    /// `callback`. It may report devices that are present already at once.
    ///
    /// The host asks once. After a failure it does not track the source until the host process starts
    /// again, and writes no trace line. If devices or a service are not ready yet, return kSuccess and
    /// report devices when they arrive.
    ///
    /// @param[in] callback borrowed for the call; add a reference to keep it
    /// @return after a failure the host does not track the source
    virtual Status RegisterCallback(ICallbackInterface* callback) = 0;
    /// 7: unregisters the callback in a process that continues, for example if the host cannot create
    /// the window for the source. The host does not call it when the process ends. Two rules:
    ///
    /// - **Stop.** After this call returns, the plugin begins no call of the callback. End the threads
    ///   that report, and wait for them: the host holds no lock here that could block such a call.
    /// - **Release.** Release the reference that RegisterCallback added after the last call of the
    ///   callback has returned. A thread that you cannot wait for needs a reference of its own, which it
    ///   releases after its last call. Until then the call is safe, and the host still reports it.
    ///
    /// @param[in] callback the registered callback
    /// @return kSuccess, or the failure
    virtual Status UnregisterCallback(ICallbackInterface* callback) = 0;

protected:
    ~ISourceManager() = default;
};

// ---- Interfaces of the host's enumerator, which lists the host's own plugins; no plugin needs them

/// Interface 8: enumerates entries. Use it from one thread at a time; reference counting is callable
/// from any thread.
class IEnum : public IFxBase
{
public:
    /// 3: writes the number of entries.
    ///
    /// @param[out] count the number
    /// @return kSuccess. kBadArgument: `count` is null
    virtual Status GetCount(std::uint32_t* count) = 0;
    /// 4: fills the caller's record from the current entry and moves to the next one.
    ///
    /// @param[in,out] info owned by the caller, who sets its version and size before the call
    /// @return kSuccess. kEndOfEnumeration: there is no entry left. kBadArgument: `info` is null, or has
    ///     another version or size; nothing was written
    virtual Status Next(SourceInfo* info) = 0;
    /// 5: moves back to the first entry.
    ///
    /// @return kSuccess
    virtual Status Reset() = 0;

protected:
    ~IEnum() = default;
};

/// Interface 9: enumerates the sources of the listed plugins, in the order in which the host loaded
/// them.
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
/// @param[out] object receives an object with one reference for the caller; null if the plugin is not to
///     be loaded
/// @return not read: the host checks `object` alone
__declspec(dllexport) kestraboot::mox::Status FxPluginMain(kestraboot::mox::IFxBase** object);
}
