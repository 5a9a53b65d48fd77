#include "explain/WatchExplanation.h"

#include "readings/Text.h"
#include "service/Replies.h"

#include <algorithm>

namespace orv {

namespace {

std::string lineAndColumn(const std::string& bytes, std::size_t position)
{
    const auto before = std::string_view(bytes).substr(0, position);
    const auto line = std::ranges::count(before, '\n') + 1;
    const auto start = before.rfind('\n') + 1; // 0 on the first line
    return "near line " + std::to_string(line) + ", column " + std::to_string(before.size() - start + 1);
}

class Rows {
public:
    explicit Rows(const Inspection& inspected)
        : inspection(inspected)
        , file(inspected.watch)
    {
    }

    std::vector<WatchRow> take()
    {
        if (!inspection.companion)
            addReason(Verdict::noCompanion, {{.kind = ChangeKind::companion}, {.kind = ChangeKind::watchFile}}, "");
        else if (file.outcome == WatchFileOutcome::noContainer)
            addReason(Verdict::noContainer, {{.kind = ChangeKind::container}, {.kind = ChangeKind::watchFile}}, "");
        else if (file.outcome == WatchFileOutcome::noFile)
            addReason(Verdict::noFile, {{.kind = ChangeKind::watchFile}}, repairedUTF8(file.path));
        else if (file.outcome == WatchFileOutcome::notJSON)
            addReason(Verdict::notJSON, {{.kind = ChangeKind::validJSON}}, where());
        else
            addEntries();
        return std::move(rows);
    }

private:
    void addReason(Verdict verdict, Change change, std::string detail)
    {
        rows.push_back({.verdict = verdict, .detail = std::move(detail), .change = std::move(change)});
    }

    std::string where() const
    {
        return repairedUTF8(file.path)
            + (file.faultPosition ? ", " + lineAndColumn(file.bytes, *file.faultPosition) : "");
    }

    void addEntries()
    {
        const auto* entries = file.content.as<Dictionary>();
        if (!entries) {
            addReason(Verdict::notObjects, {{.kind = ChangeKind::objectMember}}, repairedUTF8(file.path));
            return;
        }
        for (const auto& entry : *entries) {
            rows.push_back(entryRow(entry));
            if (rows.back().verdict == Verdict::shown)
                addNulls(entry.key, "", entry.value);
        }
    }

    WatchRow entryRow(const Member& entry) const
    {
        WatchRow row{.key = entry.key, .content = entry.value};
        if (file.outcome == WatchFileOutcome::notObjects) {
            row.verdict = Verdict::notObjects;
            row.member = file.member;
            row.change = changeForObjects(entry.key);
        } else if (inspection.devices.contains(entry.key)) {
            row.verdict = Verdict::otherSource;
            row.change = {{.kind = ChangeKind::deviceGone, .name = entry.key}};
        }
        return row;
    }

    // One that is no object stands in the way of all.
    Change changeForObjects(const std::string& key) const
    {
        Change change{{.kind = ChangeKind::objectMember, .name = file.member}};
        if (inspection.devices.contains(key))
            change.push_back({.kind = ChangeKind::deviceGone, .name = key});
        return change;
    }

    void addNulls(const std::string& key, const std::string& path, const Value& value)
    {
        if (!hasReplyForm(value)) {
            rows.push_back({.key = key,
                .member = path,
                .verdict = Verdict::nullLeftOut,
                .change = Change{{.kind = ChangeKind::noNull}}});
        }
        if (const auto* members = value.as<Dictionary>()) {
            for (const auto& [name, content] : *members)
                addNulls(key, std::string(path).append(path.empty() ? "" : ".").append(name), content);
        }
        if (const auto* items = value.as<Array>()) {
            for (std::size_t place = 0; place < items->size(); ++place)
                addNulls(key, std::string(path).append("[").append(std::to_string(place)).append("]"), (*items)[place]);
        }
    }

    const Inspection& inspection;
    const WatchFile& file;
    std::vector<WatchRow> rows;
};

} // namespace

std::vector<WatchRow> explainWatch(const Inspection& inspection)
{
    return Rows(inspection).take();
}

} // namespace orv
