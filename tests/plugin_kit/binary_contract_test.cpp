// Each operation has its number: the tests call them like a plugin or host that knows only the
// numbers.
#include "kestraboot/mox_plugin.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace kestraboot::mox
{
namespace
{

using Slot = std::uint64_t (*)(void* object, void* first, void* second);

/// Calls the operation with that number.
std::uint64_t Call(void* object, std::size_t number, void* first = nullptr, void* second = nullptr)
{
    void** const table = *static_cast<void***>(object);
    return reinterpret_cast<Slot>(table[number])(object, first, second);
}

/// Records the called operation.
template <typename Interface>
class Remembering : public Interface
{
public:
    bool Query(InterfaceNumber number, void** object) override
    {
        called = "Query " + std::to_string(number);
        *object = this;
        return true;
    }
    std::uint32_t AddReference() override { return Remember("AddReference"); }
    std::uint32_t Release() override { return Remember("Release"); }

    std::string called;

protected:
    ~Remembering() = default;

    Status Remember(const char* operation)
    {
        called = operation;
        return kNotListed;
    }
};

class TheDescriptor final : public Remembering<IPluginDescriptor>
{
public:
    Status GetName(wchar_t*, std::uint32_t capacity) override
    {
        return capacity == 260 ? Remember("GetName") : kBadArgument;
    }
    Status GetValue(std::uint32_t*) override { return Remember("GetValue"); }
    Status GetIdentifier(Identifier*) override { return Remember("GetIdentifier"); }
    Status SetListEntry(const PluginDescriptor*) override { return Remember("SetListEntry"); }
    Status ShutDown() override { return Remember("ShutDown"); }
};

class TheSource final : public Remembering<ISourceManager>
{
public:
    Status Reserved3() override { return Remember("Reserved3"); }
    Status GetCategory(std::uint32_t*) override { return Remember("GetCategory"); }
    Status Reserved5() override { return Remember("Reserved5"); }
    Status RegisterCallback(ICallbackInterface*) override { return Remember("RegisterCallback"); }
    Status UnregisterCallback(ICallbackInterface*) override { return Remember("UnregisterCallback"); }
};

class TheCallback final : public Remembering<ICallbackInterface>
{
public:
    Status Notify(std::uint64_t unused, const DeviceRecord* record) override
    {
        return unused == 0 && record != nullptr ? Remember("Notify") : kBadArgument;
    }
};

class TheEnumerator final : public Remembering<IEnumSourceManager>
{
public:
    Status GetCount(std::uint32_t*) override { return Remember("GetCount"); }
    Status Next(SourceInfo*) override { return Remember("Next"); }
    Status Reset() override { return Remember("Reset"); }
};

template <typename Object>
void ExpectBase(Object& object)
{
    void* output = nullptr;
    const std::uintptr_t number = 13;
    EXPECT_EQ(Call(&object, 0, reinterpret_cast<void*>(number), &output) & 0xFF, 1U);
    EXPECT_EQ(object.called, "Query 13");
    EXPECT_EQ(output, &object);
    Call(&object, 1);
    EXPECT_EQ(object.called, "AddReference");
    Call(&object, 2);
    EXPECT_EQ(object.called, "Release");
}

template <typename Object>
void ExpectOperation(Object& object, std::size_t number, const char* name, void* first = nullptr,
                     void* second = nullptr)
{
    EXPECT_EQ(Call(&object, number, first, second) & 0xFFFFFFFF, kNotListed) << name;
    EXPECT_EQ(object.called, name) << number;
}

TEST(TheKit, NumbersTheOperationsOfADescriptor)
{
    TheDescriptor object;
    ExpectBase(object);
    wchar_t name[260];
    ExpectOperation(object, 3, "GetName", name, reinterpret_cast<void*>(std::uintptr_t{260}));
    ExpectOperation(object, 4, "GetValue");
    ExpectOperation(object, 5, "GetIdentifier");
    ExpectOperation(object, 6, "SetListEntry");
    ExpectOperation(object, 7, "ShutDown");
}

TEST(TheKit, NumbersTheOperationsOfASourceManager)
{
    TheSource object;
    ExpectBase(object);
    ExpectOperation(object, 3, "Reserved3");
    ExpectOperation(object, 4, "GetCategory");
    ExpectOperation(object, 5, "Reserved5");
    ExpectOperation(object, 6, "RegisterCallback");
    ExpectOperation(object, 7, "UnregisterCallback");
}

TEST(TheKit, NumbersTheOperationsOfACallback)
{
    TheCallback object;
    ExpectBase(object);
    DeviceRecord record = {};
    ExpectOperation(object, 3, "Notify", nullptr, &record);
}

TEST(TheKit, NumbersTheOperationsOfAnEnumerator)
{
    TheEnumerator object;
    ExpectBase(object);
    ExpectOperation(object, 3, "GetCount");
    ExpectOperation(object, 4, "Next");
    ExpectOperation(object, 5, "Reset");
}

TEST(TheKit, HasTheNumbersOfTheContract)
{
    EXPECT_EQ(kSuccess, 0U);
    EXPECT_EQ(kNotListed, 0x40000001U);
    EXPECT_EQ(kFailure, 0xC0000002U);
    EXPECT_EQ(kException, 0xC0000005U);
    EXPECT_EQ(kOutOfMemory, 0xC0000006U);
    EXPECT_EQ(kBadArgument, 0xC000000AU);
    EXPECT_EQ(kNoEnumerator, 0xC000000BU);
    EXPECT_EQ(kSourceManagerNotOpen, 0xC000000CU);
    EXPECT_EQ(kEndOfEnumeration, 0xD0000001U);
    EXPECT_EQ(kPluginDescriptorNumber, 1U);
    EXPECT_EQ(kEnumNumber, 8U);
    EXPECT_EQ(kEnumSourceManagerNumber, 9U);
    EXPECT_EQ(kSourceManagerNumber, 13U);
}

TEST(TheKit, WritesAnIdentifierAsItsBytesInMemory)
{
    constexpr Identifier kPhoneManager = {
        0xEAD73274, 0x3BC9, 0x4878, {0xB3, 0x44, 0x6B, 0xE7, 0x4A, 0x12, 0xB2, 0x7A}};
    constexpr std::uint8_t kBytes[16] = {0x74, 0x32, 0xD7, 0xEA, 0xC9, 0x3B, 0x78, 0x48,
                                         0xB3, 0x44, 0x6B, 0xE7, 0x4A, 0x12, 0xB2, 0x7A};
    EXPECT_EQ(std::memcmp(&kPhoneManager, kBytes, 16), 0);
}

} // namespace
} // namespace kestraboot::mox
