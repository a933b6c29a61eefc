// Whether an arrived volume is reported: its kind, the search depth and the formats of a generated
// registry, and a card that may settle between the attempts.
#include "service/media_sniffer.h"
#include "tests/endurance/fuzz/folder_tree.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/steered_world.h"
#include "tests/endurance/fuzz/world_generator.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

/// A volume as Windows reports it, and its content at each attempt.
struct Volume {
    UINT type = DRIVE_REMOVABLE;
    bool hasFileSystem = true;
    std::wstring fileSystem;
    std::vector<FolderTree> contents;
};

Volume AnyVolume(Random& random)
{
    static constexpr const wchar_t* kFileSystems[] = {L"NTFS",   L"KODAK", L"my Kodak fs",
                                                      L"kod ak", L"",      L"FAT32kodak"};
    Volume volume;
    volume.type =
        random.Pick<UINT>({DRIVE_REMOVABLE, DRIVE_REMOVABLE, DRIVE_REMOVABLE, DRIVE_FIXED, DRIVE_FIXED,
                           DRIVE_CDROM, DRIVE_REMOTE, DRIVE_RAMDISK, DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR});
    volume.hasFileSystem = random.Chance(85);
    volume.fileSystem = random.OtherCase(random.Pick(kFileSystems));
    volume.contents = {AnyTree(random), AnyTree(random), AnyTree(random)};
    return volume;
}

Walked ModelOfCheck(World& world, const std::wstring& root, const Volume& volume)
{
    std::wstring lower = volume.fileSystem;
    for (wchar_t& character : lower) {
        character |= character >= L'A' && character <= L'Z' ? 0x20 : 0;
    }
    const bool kodak =
        volume.hasFileSystem && lower.find(L"kodak") != std::wstring::npos && volume.type == DRIVE_FIXED;
    if (volume.type != DRIVE_REMOVABLE && !kodak) {
        return {false, {L"<***DeviceConnect***><Unsupported volume found.>"}};
    }
    Walked all;
    for (const FolderTree& tree : volume.contents) {
        ApplicationModel model(world);
        const int depth = model.SniffDepth();
        std::vector<std::wstring> supported;
        for (const formatInfo_tag& format : model.SupportedFormats()) {
            supported.push_back(format.Extension);
        }
        Walked walked;
        if (depth == 0) {
            walked.trace = {L"<***DeviceConnect***><Suppressing auto launch...>"};
        } else {
            walked = ModelOfWalk(root, static_cast<unsigned>(depth), supported,
                                 [&](const std::wstring& folder) {
                                     auto entries = tree.List(root, folder);
                                     return entries && entries->empty() ? std::nullopt : entries;
                                 });
        }
        all.found = walked.found;
        all.trace.insert(all.trace.end(), walked.trace.begin(), walked.trace.end());
        if (all.found) {
            return all;
        }
        all.trace.emplace_back(
            L"<***DeviceConnect***><Supported media content check fails...Trying again.>");
    }
    all.trace.emplace_back(L"<***DeviceConnect***><Volume does not contain supported media content.>");
    return all;
}

TEST(VolumeCheckFuzz, ReportsAVolumeIfTheModelDoes)
{
    SteeredWorld steered(Keys::InMemory);
    SteeredFolders folders;
    Volume volume;
    std::size_t attempts = 0;
    const std::wstring root = L"E:";
    const FAKE_IMPORT(GetDriveTypeW) drive([&](const wchar_t*) -> UINT {
        return volume.type;
    });
    const FAKE_IMPORT(GetVolumeInformationW)
        information([&](const wchar_t*, wchar_t* label, DWORD labelSize, DWORD*, DWORD*, DWORD*,
                        wchar_t* name, DWORD size) -> BOOL {
            if (!volume.hasFileSystem) {
                return FALSE;
            }
            if (label != nullptr && labelSize > 5) {
                std::wcscpy(label, L"KODAK"); // irrelevant
            }
            volume.fileSystem.copy(name, size - 1);
            name[volume.fileSystem.size()] = L'\0';
            return TRUE;
        });
    const FAKE_IMPORT(Sleep) sleep([&](DWORD milliseconds) {
        EXPECT_EQ(milliseconds, 1000UL);
        if (++attempts < volume.contents.size()) {
            folders.Become(root, volume.contents[attempts]);
        }
    });
    Fuzz({.usual = 800, .share = 2}, [&](Random& random) {
        World world;
        do {
            world = SoundWorld(random);
            ApplicationModel model(world);
            model.Load();
            if (!model.applications.empty()) {
                break; // without one, the process would end
            }
        } while (true);
        for (const wchar_t* const product : {L"Viewer", L"Album", L"Zed\\2", L"b"}) {
            const std::wstring path =
                std::wstring(L"SOFTWARE\\Corvane\\") + product + L"\\Corvane Kestrafetch";
            if (HiveKey* const key = world.machine.Find(path)) {
                std::wstring words;
                for (const std::wstring& extension : AnySupported(random)) {
                    words += extension + L' ';
                }
                key->MakeSubkey(L"File Formats")
                    .PutText(random.Pick({L"Image", L"Video", L"Audio"}), words);
                if (random.Chance(60)) {
                    world.user.Make(path).PutDword(L"SniffDepth",
                                                   random.Pick({0U, 1U, 2U, 3U, 0x80000001U}));
                }
            }
        }
        steered.Become(world, {});
        volume = AnyVolume(random);
        attempts = 0;
        folders.Become(root, volume.contents[0]);

        const bool found = CheckVolumeForMedia(root);

        const Walked expected = ModelOfCheck(world, root, volume);
        EXPECT_EQ((Walked{found, steered.recorder.trace.Lines()}), expected);
        EXPECT_EQ(folders.Open(), 0U);
    });
}

} // namespace
} // namespace kestraboot::fuzz
