#include "tests/real_windows/report.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace kestraboot::real_windows
{
namespace
{

/// The length of the UTF-8 character at `at`; 0 if there is none, or one that XML does not know.
std::size_t CharacterAt(const std::string& text, std::size_t at)
{
    const auto byte = [&](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    };
    const unsigned first = byte(at);
    if (first < 0x80) {
        return first >= 0x20 || first == '\n' || first == '\t' ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) {
        return 0;
    }
    unsigned character = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0U) != 0x80U) {
            return 0;
        }
        character = character << 6 | (byte(at + i) & 0x3FU);
    }
    const bool shortest = length == 2 || character >= (length == 3 ? 0x800U : 0x10000U);
    const bool known =
        (character < 0xD800 || character > 0xDFFF) && character != 0xFFFE && character != 0xFFFF;
    return shortest && known && character <= 0x10FFFF ? length : 0;
}

/// The output of tests may be anything.
std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = CharacterAt(text, at);
        const char first = text[at];
        if (length == 0) {
            escaped += '?';
        } else if (first == '<' || first == '>' || first == '&' || first == '"' || first == '\n') {
            escaped += "&#" + std::to_string(static_cast<int>(first)) + ';';
        } else {
            escaped += text.substr(at, length);
        }
        at += length == 0 ? 1 : length;
    }
    return escaped;
}

std::string Seconds(long long milliseconds)
{
    char text[64] = {};
    std::snprintf(text, sizeof text, "%lld.%03lld", milliseconds / 1000, milliseconds % 1000);
    return text;
}

void WriteSuite(const ProgramResults& program, std::ostream& out)
{
    std::size_t failures = 0;
    std::size_t skipped = 0;
    long long milliseconds = 0;
    for (const TestResult& test : program.tests) {
        failures += test.outcome == Outcome::Failed ? 1 : 0;
        skipped += test.outcome == Outcome::Skipped ? 1 : 0;
        milliseconds += test.milliseconds;
    }
    out << "  <testsuite name=\"" << Escaped(program.program) << "\" tests=\"" << program.tests.size()
        << "\" failures=\"" << failures << "\" errors=\"0\" skipped=\"" << skipped << "\" time=\""
        << Seconds(milliseconds) << "\">\n";
    for (const TestResult& test : program.tests) {
        const std::size_t dot = test.name.find('.');
        const bool inSuite = dot != std::string::npos;
        out << "    <testcase classname=\""
            << Escaped(program.program + (inSuite ? "." + test.name.substr(0, dot) : "")) << "\" name=\""
            << Escaped(inSuite ? test.name.substr(dot + 1) : test.name) << "\" time=\""
            << Seconds(test.milliseconds) << '"';
        if (test.outcome == Outcome::Passed) {
            out << "/>\n";
        } else {
            out << "><" << (test.outcome == Outcome::Failed ? "failure" : "skipped") << " message=\""
                << Escaped(test.text) << "\"/></testcase>\n";
        }
    }
    out << "  </testsuite>\n";
}

} // namespace

void WriteJUnit(const Report& report, const std::filesystem::path& file)
{
    std::ofstream out(file, std::ios::binary);
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"kestraboot\" failures=\""
        << report.Count(Outcome::Failed) << "\">\n  <properties>\n";
    for (const auto& [name, value] : report.facts) {
        out << "    <property name=\"" << Escaped(name) << "\" value=\"" << Escaped(value) << "\"/>\n";
    }
    out << "  </properties>\n";
    for (const auto* const programs : {&report.programs, &report.leftOut}) {
        for (const ProgramResults& program : *programs) {
            WriteSuite(program, out);
        }
    }
    out << "</testsuites>\n";
    out.close();
    if (!out) {
        throw std::runtime_error(file.filename().string() + " cannot be written");
    }
}

} // namespace kestraboot::real_windows
