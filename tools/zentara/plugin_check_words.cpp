#include "tools/zentara/plugin_check_words.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <zentara/utils/format.h>

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

Json stepJson(const CheckedStep& step) {
    return {{"part", step.part},
            {"name", step.name},
            {"verdict", stepVerdictName(step.verdict)},
            {"observed", orNull(step.observed)},
            {"consequence", orNull(step.consequence)},
            {"remedy", orNull(step.remedy)},
            {"milliseconds", step.milliseconds}};
}

void printReportJson(const PluginReport& report, Console& console) {
    Json json = beginJson(console);
    json["path"] = report.path;
    json["guid"] = report.type == 0 ? Json() : Json(report.name.guidText());
    json["type"] = report.type;
    json["kind"] = orNull(report.kind);
    json["passed"] = report.passed();
    json["steps"] = Json::array();
    for (const CheckedStep& step : report.steps)
        json["steps"].push_back(stepJson(step));
    print(console.out, json);
}

void printStep(const CheckedStep& step, std::ostream& out) {
    out << "  " << padded(stepVerdictName(step.verdict), 9) << step.name;
    if (step.verdict == StepVerdict::Passed) {
        out << (step.observed.empty() ? "" : ": " + step.observed) << '\n';
        return;
    }
    out << '\n';
    const std::pair<const char*, const std::string&> said[]{
        {"observed", step.observed}, {"means", step.consequence}, {"remedy", step.remedy}};
    for (const auto& [what, text] : said)
        if (!text.empty())
            out << "           " << padded(what, 10) << text << '\n';
}

/// Part by part, and in each in the order in which they were tried.
void printReport(const PluginReport& report, std::ostream& out) {
    out << printable(report.path);
    if (report.type != 0)
        out << ": " << report.kind << ' ' << report.name.guidText();
    out << '\n';
    std::vector<std::string> parts;
    for (const CheckedStep& step : report.steps)
        if (std::find(parts.begin(), parts.end(), step.part) == parts.end())
            parts.push_back(step.part);
    for (const std::string& part : parts) {
        out << '\n' << part << '\n';
        for (const CheckedStep& step : report.steps)
            if (step.part == part)
                printStep(step, out);
    }
    out << '\n'
        << report.count(StepVerdict::Passed) << " passed, " << report.count(StepVerdict::Remark)
        << " remarks, " << report.count(StepVerdict::Failed) << " failed, "
        << report.count(StepVerdict::NotRun) << " not run\n";
}

} // namespace

ExitCode checkPluginFile(const std::string& file, bool asJson, Console& console) {
    const PluginReport report = checkPlugin(file, {.program = console.program});
    if (asJson)
        printReportJson(report, console);
    else
        printReport(report, console.out);
    if (report.passed())
        return Failure::None;
    note(console, Format("'%' does not keep what its kind promises: % of % steps failed") % printable(file) %
                      report.count(StepVerdict::Failed) % report.steps.size());
    return Failure::Verification;
}

} // namespace Zentara::Tool
