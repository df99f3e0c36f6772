#include "tools/proof/ReportPage.h"

namespace proof {

namespace {

constexpr char kHead[] =
    "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>Pixora on this PC</title>\n<style>\n"
    "body{font:16px/1.5 'Segoe UI',sans-serif;max-width:64rem;margin:2rem auto;padding:0 1rem;color:#1c2330}\n"
    "table{border-collapse:collapse;width:100%}td,th{border:1px solid #cfd5e0;padding:.4rem .6rem;text-align:left;"
    "vertical-align:top}\npre{white-space:pre-wrap;background:#f1f3f8;padding:.8rem;overflow-wrap:anywhere}\n"
    "img{max-width:30rem;border:1px solid #cfd5e0}figure{display:inline-block;margin:.5rem}\n"
    "textarea{width:100%;min-width:14rem;min-height:3rem}.failed{color:#b3261e}.skipped{color:#7a5a00}.passed{color:#"
    "1b6e35}\n"
    "@media print{details{display:block}}\n</style></head><body>\n";

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Duration(int seconds) {
    constexpr int kMinute = 60;
    return seconds < kMinute ? std::to_string(seconds) + " s"
                             : std::to_string(seconds / kMinute) + " min " + std::to_string(seconds % kMinute) + " s";
}

std::string InWords(const Counts& counts) {
    return std::to_string(counts.passed) + " passed, " + std::to_string(counts.failed) + " failed, " +
           std::to_string(counts.skipped) + " skipped";
}

// The cases with that result, with what they printed.
std::string Told(const Report& report, Result result) {
    std::string html;
    for (const ProgramResult& program : report.results) {
        for (const Case& one : program.cases) {
            if (one.result == result) {
                html += "<h3>" + Escaped(program.name) + ": " + Escaped(one.name) + "</h3>\n<pre>" + Escaped(one.text) +
                        "</pre>\n";
            }
        }
    }
    return html.empty() ? "<p>None.</p>\n" : html;
}

std::string Programs(const Report& report) {
    std::string html = "<table><tr><th>Program</th><th>Cases</th><th>Time</th></tr>\n";
    for (const ProgramResult& program : report.results) {
        const Counts counts = Count({program});
        html += std::string("<tr class=\"") + (counts.failed > 0 ? "failed" : "passed") + "\"><td>" +
                Escaped(program.name) + "</td><td>" + InWords(counts) + "</td><td>" + Duration(program.seconds) +
                "</td></tr>\n";
    }
    return html + "</table>\n";
}

// Attributes and texts, not properties, are what a browser saves.
std::string Steps(const std::vector<Named>& steps) {
    std::string html = "<table><tr><th>Done</th><th>Step</th><th>What must be seen</th><th>What was seen</th></tr>\n";
    for (const Named& step : steps) {
        html += "<tr><td><input type=\"checkbox\" oninput=\"this.toggleAttribute('checked',this.checked)\"></td><td>" +
                Escaped(step.what) + "</td><td>" + Escaped(step.text) +
                "</td><td><textarea oninput=\"this.textContent=this.value\"></textarea></td></tr>\n";
    }
    return html + "</table>\n";
}

std::string Pictures(const std::vector<std::string>& names) {
    std::string html;
    for (const std::string& name : names) {
        html += "<figure><a href=\"screenshots/" + Escaped(name) +
                "\"><img loading=\"lazy\" alt=\"\" src=\"screenshots/" + Escaped(name) + "\"></a><figcaption>" +
                Escaped(name) + "</figcaption></figure>\n";
    }
    return html.empty() ? "<p>None were made.</p>\n" : html;
}

}  // namespace

Counts Count(const std::vector<ProgramResult>& results) {
    Counts counts;
    for (const ProgramResult& program : results) {
        for (const Case& one : program.cases) {
            int& count = one.result == Result::kPassed   ? counts.passed
                         : one.result == Result::kFailed ? counts.failed
                                                         : counts.skipped;
            ++count;
        }
    }
    return counts;
}

std::string MakePage(const Report& report) {
    std::string html = kHead;
    html += "<h1>Pixora " + Escaped(report.version) + " on this PC</h1>\n<p><b>" + InWords(Count(report.results)) +
            "</b>; begun " + Escaped(report.begun) + ", " + Duration(report.seconds) + ".</p>\n";
    if (!report.isWhole) {
        html += "<p class=\"failed\">The run was stopped before its last test.</p>\n";
    }
    for (const std::string& remark : report.remarks) {
        html += "<p class=\"failed\">" + Escaped(remark) + "</p>\n";
    }
    html += "<p>Paths in this page may hold your user name. Save the page after ticking boxes and writing notes.</p>\n";
    html +=
        "<h2>A quarter of an hour at this PC</h2>\n<p>What no program can try: see docs/windows.md of the same "
        "version.</p>\n" +
        Steps(report.steps);
    html += "<h2>Failed</h2>\n" + Told(report, Result::kFailed);
    html += "<h2>Skipped</h2>\n" + Told(report, Result::kSkipped);
    html += "<h2>Programs</h2>\n" + Programs(report);
    html += "<h2>Not in this package</h2>\n<ul>\n";
    for (const Named& test : report.without) {
        html += "<li>" + Escaped(test.what) + ": " + Escaped(test.text) + "</li>\n";
    }
    html += "</ul>\n<h2>Diagnostics</h2>\n<pre>" + Escaped(report.diagnostics) + "</pre>\n";
    html += "<h2>Screenshots</h2>\n" + Pictures(report.pictures);
    return html + "</body></html>\n";
}

}  // namespace proof
