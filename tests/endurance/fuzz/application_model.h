// The rules of the registry of applications, written a second time and as plainly as possible: on hives
// in memory, and without any part of the product.
#pragma once

#include "kestraboot/application_info.h"
#include "tests/endurance/fuzz/hive.h"
#include "tests/endurance/fuzz/launch_model.h"

#include <optional>
#include <set>

namespace kestraboot::fuzz
{

/// The machine as one process sees it.
struct World {
    Hive machine;
    Hive user;
    std::set<std::wstring> files; ///< the existing files
    std::wstring self;            ///< the running executable; empty if the process cannot determine it
    bool isAdministrators = true; ///< whether the process may write the machine's registry
};

/// Thrown in the place of the end of the process, by the model and, if it is steered so, by the
/// product.
struct ProcessEnded {
};

class ApplicationModel
{
public:
    explicit ApplicationModel(World& given) : world(given) {}

    void Load();
    void MaintainOrder();
    [[nodiscard]] const appInfo_tag* Named(const std::wstring& name) const;
    [[nodiscard]] std::vector<appInfo_tag> Defaults() const;
    [[nodiscard]] std::vector<formatInfo_tag> SupportedFormats();
    [[nodiscard]] std::optional<appInfo_tag> Organiser();
    [[nodiscard]] bool SetDefaultStatus(const std::wstring& name, const std::wstring& value);
    [[nodiscard]] bool LaunchStatus();
    [[nodiscard]] bool SetLaunchStatus(std::int32_t status);
    [[nodiscard]] std::optional<std::wstring> Locale();
    [[nodiscard]] int SniffDepth();

    /// The record of the current list whose proxy is the running program.
    [[nodiscard]] const appInfo_tag* Own() const;

    std::vector<appInfo_tag> applications;
    Launched seen;       ///< the starts and traces so far
    std::string console; ///< the console output so far

private:
    [[nodiscard]] appInfo_tag Record(const std::wstring& path);
    [[nodiscard]] std::uint32_t DefaultFlag(const std::wstring& preferences);
    void MakeUserPreferences(const std::wstring& preferences);
    [[nodiscard]] bool KeptOut(const std::wstring& path);
    void WriteDefault(const appInfo_tag& application, std::uint32_t flag);
    [[nodiscard]] std::optional<std::wstring> OwnKey();

    World& world;
};

/// The text of a value: its bytes up to the first zero, whatever its type; empty if it is missing.
[[nodiscard]] std::optional<std::wstring> TextOf(const HiveKey* key, const wchar_t* name);

/// The number of a value of four bytes, unless all its bits are set.
[[nodiscard]] std::optional<std::uint32_t> NumberOf(const HiveKey* key, const wchar_t* name);

/// For comparison and for messages.
[[nodiscard]] std::wstring Shown(const std::vector<formatInfo_tag>& formats);
[[nodiscard]] std::wstring Shown(const appInfo_tag& application);
[[nodiscard]] std::vector<std::wstring> Shown(const std::vector<appInfo_tag>& applications);

} // namespace kestraboot::fuzz
