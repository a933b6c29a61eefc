#include "bench/walk_rows.h"

#include "bench/card.h"
#include "bench/contest.h"
#include "bench/floors/walk.h"
#include "bench/silenced.h"
#include "service/media_walk.h"
#include "tests/support/import_patch.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace kestraboot::bench
{
namespace
{

constexpr unsigned kDepth = 4;

void Require(bool asExpected)
{
    if (!asExpected) {
        throw std::logic_error("a side did not do the work: the measurement would be of nothing");
    }
}

std::size_t StandardWalk(const std::wstring& root)
{
    std::size_t entries = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        static_cast<void>(entry);
        ++entries;
    }
    return entries;
}

} // namespace

ExtensionSet MediaExtensions()
{
    std::vector<formatInfo_tag> formats;
    std::wistringstream words(L"jpg jpeg jpe tif tiff bmp gif png psd raw crw nef avi mov mpg mpeg wmv");
    for (std::wstring word; words >> word;) {
        formats.push_back({word, L"Image"});
    }
    return ExtensionSet(formats);
}

void CompeteInWalk(const Request& request)
{
    const Card card(L'E', request.card);
    const ExtensionSet extensions = MediaExtensions();
    const std::wstring root = card.Drive();
    Require(TracedWalk(root, kDepth) >= static_cast<std::size_t>(request.Number()));
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  Require(!FindSupportedFile(root.c_str(), kDepth, extensions));
              }},
             {"floor", 1.05, [&] {
                  TracedWalk(root, kDepth);
              }}});
}

void CompeteInQuietWalk(const Request& request)
{
    const Card card(L'E', request.card);
    const ExtensionSet extensions = MediaExtensions();
    const std::wstring root = card.Drive();
    const tests::ImportPatch quiet("OutputDebugStringW", DropLine);
    Require(StandardWalk(root + L'\\') == BareWalk(root, kDepth));
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  Require(!FindSupportedFile(root.c_str(), kDepth, extensions));
              }},
             {"floor", 1.15,
              [&] {
                  BareWalk(root, kDepth);
              }},
             {"std::filesystem", 0.5, [&] {
                  StandardWalk(root + L'\\');
              }}});
}

void CompeteInSearch(const Request& request)
{
    const Card card(L'E', request.card);
    const ExtensionSet extensions = MediaExtensions();
    const std::wstring root = card.Drive();
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  Require(FindSupportedFile(root.c_str(), kDepth, extensions));
              }},
             {"floor", 1.10, [&] {
                  Require(TracedSearch(root, kDepth, L"jpg"));
              }}});
}

} // namespace kestraboot::bench
