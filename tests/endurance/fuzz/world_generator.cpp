#include "tests/endurance/fuzz/world_generator.h"

#include "tests/endurance/fuzz/value_generator.h"

namespace kestraboot::fuzz
{
namespace
{

constexpr const wchar_t* kFiles[] = {L"C:\\Apps\\proxy1.exe", L"C:\\Apps\\PROXY2.exe",
                                     L"C:\\\u00C9t\u00E9\\proxy3.exe", L"C:\\Apps\\viewer.exe",
                                     L"C:\\a b\\\U0001F600.exe"};

/// No names with characters that sort in different ways: "[" to "`" are between the two cases.
std::wstring AnyKeyName(Random& random)
{
    static constexpr const wchar_t* kNames[] = {L"Viewer",
                                                L"1.0",
                                                L"arena",
                                                L"Alpha",
                                                L"zed",
                                                L"Avro",
                                                L"SOFT",
                                                L"e",
                                                L"Vellumry",
                                                L"\u00C9t\u00E9",
                                                L"File Formats",
                                                L"Preferences",
                                                L" ",
                                                L"corvane kestrafetch",
                                                L"Corvane Kestrafetch ",
                                                L"Corvane  Kestrafetch",
                                                L"Corvane Kestrafetch2",
                                                L"Corvane"};
    constexpr std::wstring_view kLetters = L"abcxyzABCXYZorvnestf0189 .-";
    if (random.Chance(35)) {
        return L"Corvane Kestrafetch";
    }
    if (random.Chance(60)) {
        return random.Pick(kNames);
    }
    const std::size_t length =
        random.Chance(90) ? random.Between(1, 8) : random.Pick<std::size_t>({126, 127, 128, 129, 255});
    std::wstring name;
    while (name.size() < length) {
        name += random.Pick(kLetters);
    }
    return name;
}

std::wstring AnyFile(Random& random)
{
    switch (random.Below(12)) {
    case 0:
        return L"C:\\Apps\\missing.exe";
    case 1:
        return random.OtherCase(random.Pick(kFiles)); // has the effect of a missing one here
    case 2:
        return L'"' + std::wstring(random.Pick(kFiles)) + L'"';
    default:
        return random.Pick(kFiles);
    }
}

std::wstring AnyExtensions(Random& random)
{
    static constexpr const wchar_t* kWords[] = {L"jpg",  L"JPG", L"mp3", L"avi", L"pdf",
                                                L".tif", L"",    L"",    L"\t",  L"jpg,png"};
    std::wstring text;
    for (std::size_t i = random.Below(6); i > 0; --i) {
        text += (random.Chance(90) ? random.Pick(kWords) : random.TextOf(random.Below(6))) +
                (i > 1 || random.Chance(20) ? L" " : L"");
    }
    return text;
}

void FillPreferences(Random& random, HiveKey& preferences)
{
    if (random.Chance(60)) {
        PutAnyNumber(random, preferences, L"DefaultFlag");
    }
    if (random.Chance(25)) {
        PutAnyNumber(random, preferences, L"AutoLaunchOnDeviceConnect");
    }
}

void FillApplication(Random& random, World& world, const std::wstring& path)
{
    HiveKey& key = world.machine.Make(path);
    const auto put = [&](const wchar_t* name, const std::wstring& text, unsigned missing) {
        if (!random.Chance(missing)) {
            PutAnyText(random, key, random.Chance(95) ? name : random.OtherCase(name), text);
        }
    };
    put(L"Name", random.Chance(50) ? random.Pick({L"Viewer", L"viewer", L"Album"}) : random.Text(), 10);
    put(L"ProxyPath", AnyFile(random), 3);
    put(L"CmdLine", AnyFile(random), 3);
    put(L"Desc", random.Text(), 50);
    put(L"Icon", random.Text(), 50);
    if (random.Chance(60)) {
        HiveKey& formats = key.MakeSubkey(L"File Formats");
        for (const wchar_t* const name : {L"Image", L"Audio", L"Video"}) {
            if (random.Chance(60)) {
                PutAnyText(random, formats, name, AnyExtensions(random));
            }
        }
    }
    if (random.Chance(60)) {
        FillPreferences(random, key.MakeSubkey(L"Preferences"));
    }
    if (random.Chance(10)) {
        key.MakeSubkey(L"Corvane Kestrafetch").PutText(L"Name", L"never found");
    }
    if (random.Chance(45)) {
        FillPreferences(random, world.user.Make(path + L"\\Preferences"));
    }
    if (random.Chance(30)) {
        PutAnyNumber(random, world.user.Make(path), L"SniffDepth");
    }
    const std::wstring own = path.substr(0, path.find(L"\\Corvane Kestrafetch"));
    if (random.Chance(40)) {
        PutAnyNumber(random, world.user.Make(own), L"kestralaunchstatus");
    }
    if (random.Chance(40)) {
        PutAnyText(random, world.machine.Make(own), L"locale", random.Text());
    }
}

void Grow(Random& random, World& world, const std::wstring& path, std::size_t depth)
{
    const std::size_t children = random.Below(6 - std::min(depth, std::size_t{4}));
    for (std::size_t i = 0; i < children; ++i) {
        const std::wstring name = AnyKeyName(random);
        if (world.machine.Make(path).Subkey(name) != nullptr) {
            continue; // perhaps in another letter case
        }
        world.machine.Make(path).MakeSubkey(name);
        const std::wstring child = path + L'\\' + name;
        if (name == L"Corvane Kestrafetch") {
            FillApplication(random, world, child);
        } else if (depth < 5) {
            Grow(random, world, child, depth + 1);
        }
    }
}

void InstallOrganiser(Random& random, World& world)
{
    HiveKey& key = world.machine.Make(L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath");
    if (random.Chance(85)) {
        PutAnyText(random, key, L"", random.Chance(70) ? L"C:\\Legacy" : random.Text());
    }
    if (random.Chance(50)) {
        PutAnyText(random,
                   world.machine.Make(
                       L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers"
                       L"\\Handlers\\CorvaneVellumryShowPicturesOnArrival"),
                   L"Action", random.Text());
    }
}

World Surroundings(Random& random)
{
    World world;
    world.files.insert(std::begin(kFiles), std::end(kFiles));
    world.self = random.Chance(80) ? random.OtherCase(random.Pick(kFiles)) : L"C:\\other\\boot.exe";
    if (random.Chance(5)) {
        world.self.clear();
    }
    if (random.Chance(80)) {
        HiveKey& run = world.machine.Make(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run");
        if (random.Chance(60)) {
            run.PutText(L"Corvane Kestrafetch", L"\"C:\\before.exe\"");
        }
        run.PutText(L"Another", L"another.exe");
    }
    if (random.Chance(10)) {
        world.user.Make(L"").PutDword(L"SniffDepth", 1); // a setting that belongs to no application
        world.user.Make(L"").PutDword(L"kestralaunchstatus", 0);
    }
    if (random.Chance(75)) {
        world.user.Make(L"SOFTWARE\\Corvane");
    }
    return world;
}

} // namespace

World AnyWorld(Random& random)
{
    World world = Surroundings(random);
    if (random.Chance(97)) {
        world.machine.Make(L"SOFTWARE\\Corvane");
        Grow(random, world, L"SOFTWARE\\Corvane", 0);
    }
    if (random.Chance(30)) {
        InstallOrganiser(random, world);
    }
    return world;
}

World SoundWorld(Random& random)
{
    World world = Surroundings(random);
    world.machine.Make(L"SOFTWARE\\Corvane");
    const std::size_t count = random.Pick<std::size_t>({0, 1, 1, 1, 2, 2, 3, 4});
    for (std::size_t i = 0; i < count; ++i) {
        const std::wstring path = std::wstring(L"SOFTWARE\\Corvane\\") +
                                  random.Pick({L"Viewer", L"Album", L"Zed\\2", L"b"}) +
                                  L"\\Corvane Kestrafetch";
        HiveKey& key = world.machine.Make(path);
        key.PutText(L"Name", L"N" + std::to_wstring(i));
        key.PutText(L"ProxyPath", random.Pick(kFiles));
        key.PutText(L"CmdLine", random.Pick(kFiles));
        if (random.Chance(70)) {
            world.user.Make(path + L"\\Preferences").PutDword(L"DefaultFlag", random.Pick({0U, 1U, 2U}));
        }
    }
    if (random.Chance(40)) {
        InstallOrganiser(random, world);
    }
    return world;
}

} // namespace kestraboot::fuzz
