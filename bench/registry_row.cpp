#include "bench/registry_row.h"

#include "bench/contest.h"
#include "bench/floors/applications.h"
#include "bench/scene.h"
#include "kestraboot/information_handler.h"

#include <stdexcept>

namespace kestraboot::bench
{

void CompeteInLoading(const Request& request)
{
    const int applications = request.Number();
    const int otherKeys = std::stoi(request.size.substr(request.size.find('+') + 1));
    const Scene scene(applications, otherKeys, BesideThisProgram(L"bench_application.exe"));

    CKestraBootInformationHandler handler;
    std::vector<appInfo_tag> loaded;
    handler.LoadInformation();
    if (!handler.GetAllApplicationInfo(loaded) ||
        loaded.size() != static_cast<std::size_t>(applications) || LoadApplications() != applications) {
        throw std::logic_error("not all applications are loaded");
    }
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  handler.LoadInformation();
              }},
             {"floor", 1.15, [] {
                  LoadApplications();
              }}});
}

} // namespace kestraboot::bench
