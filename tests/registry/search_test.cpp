#include "registry/application_search.h"

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct ApplicationSearch : testing::Test {
    /// Adds an application key whose name is its position.
    static void Add(const std::wstring& product)
    {
        PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\" + product, L"Name", product);
    }
    static std::vector<std::wstring> Found()
    {
        std::vector<std::wstring> found;
        for (const appInfo_tag& record : CollectApplicationKeys()) {
            EXPECT_EQ(record.KeyPath, L"SOFTWARE\\Corvane\\" + record.Name);
            found.push_back(record.Name);
        }
        return found;
    }
    RegistrySandbox sandbox;
};

using Products = std::vector<std::wstring>;

TEST_F(ApplicationSearch, OfAMachineWithoutTheRootKeyFindsNothing)
{
    EXPECT_EQ(Found(), Products{});
    PutText(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\A\\Corvane Kestrafetch", L"Name", L"a user's");
    EXPECT_EQ(Found(), Products{});
}

TEST_F(ApplicationSearch, FindsKeysNearerToTheRootFirst)
{
    Add(L"A\\1.0\\x\\Corvane Kestrafetch");
    Add(L"B\\1.0\\Corvane Kestrafetch");
    Add(L"Z\\Corvane Kestrafetch");
    Add(L"Corvane Kestrafetch");
    Add(L"Y\\1.0\\Corvane Kestrafetch");
    EXPECT_EQ(Found(), (Products{L"Corvane Kestrafetch", L"Z\\Corvane Kestrafetch",
                                 L"B\\1.0\\Corvane Kestrafetch", L"Y\\1.0\\Corvane Kestrafetch",
                                 L"A\\1.0\\x\\Corvane Kestrafetch"}));
}

TEST_F(ApplicationSearch, GoesOnBesideAnApplicationKeyButNotBelowIt)
{
    Add(L"A\\Corvane Kestrafetch");
    Add(L"A\\Corvane Kestrafetch\\Corvane Kestrafetch");
    Add(L"A\\Corvane Kestrafetch\\Sub\\Corvane Kestrafetch");
    Add(L"A\\Other\\Corvane Kestrafetch");
    EXPECT_EQ(Found(), (Products{L"A\\Corvane Kestrafetch", L"A\\Other\\Corvane Kestrafetch"}));
}

TEST_F(ApplicationSearch, MatchesTheWholeNameInItsExactCase)
{
    Add(L"A\\corvane kestrafetch");
    Add(L"B\\Corvane Kestrafetch 2");
    Add(L"C\\Corvane");
    EXPECT_EQ(Found(), Products{});
    Add(L"A\\corvane kestrafetch\\Corvane Kestrafetch"); // searched like any other key
    Add(L"B\\Corvane Kestrafetch 2\\Corvane Kestrafetch");
    EXPECT_EQ(Found(), (Products{L"A\\corvane kestrafetch\\Corvane Kestrafetch",
                                 L"B\\Corvane Kestrafetch 2\\Corvane Kestrafetch"}));
}

TEST_F(ApplicationSearch, AcceptsNamesOf127Characters)
{
    const std::wstring product = std::wstring(127, L'p') + L"\\Corvane Kestrafetch";
    Add(product);
    EXPECT_EQ(Found(), Products{product});
}

TEST_F(ApplicationSearch, OfAKeyEndsAtANameOf128CharactersOrMore)
{
    for (const std::size_t length : {128U, 255U}) {
        const std::wstring longName(length, L'm');
        Add(L"A\\Corvane Kestrafetch");
        Add(longName + L"\\Corvane Kestrafetch");
        Add(L"Z\\Corvane Kestrafetch");
        Add(L"A\\B\\Corvane Kestrafetch");
        EXPECT_EQ(Found(), (Products{L"A\\Corvane Kestrafetch", L"A\\B\\Corvane Kestrafetch"}))
            << length;
        RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\" + longName);
        EXPECT_EQ(Found().size(), 3U) << length;
    }
}

TEST_F(ApplicationSearch, PassesOverKeysThatCannotBeOpened)
{
    Add(L"A\\Corvane Kestrafetch");
    Add(L"B\\Corvane Kestrafetch");
    Add(L"C\\Corvane Kestrafetch");
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            EXPECT_TRUE(access == 0x20019U || root == HKEY_CURRENT_USER);
            return path == std::wstring(L"SOFTWARE\\Corvane\\B")
                       ? ERROR_ACCESS_DENIED
                       : open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_EQ(Found(), (Products{L"A\\Corvane Kestrafetch", L"C\\Corvane Kestrafetch"}));
}

} // namespace
} // namespace kestraboot
