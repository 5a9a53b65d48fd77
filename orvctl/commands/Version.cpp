#include "orvctl/commands/Version.h"

#include "json/JSONWriter.h"

#include <memory>
#include <string>
#include <utility>

namespace orv {

namespace {

// ORV_SCHEMAS holds "orv.explain/1,…", after the files that are installed.
std::string versionDocument()
{
    Array schemas;
    for (const auto& name : CLI::detail::split(ORV_SCHEMAS, ','))
        schemas.push_back(name);
    Dictionary document;
    document.set("schema", std::string("orv.version/1"));
    document.set("version", std::string(ORV_VERSION));
    document.set("schemas", std::move(schemas));
    return writeJSON(document, KeyOrder::asListed);
}

} // namespace

void addVersion(CLI::App& application)
{
    const auto json = std::make_shared<bool>(false);
    auto* asJSON = application.add_flag("--json", *json, "With --version: as JSON, with all schemas");
    auto* version = application.set_version_flag(
        "--version", [json] { return *json ? versionDocument() : "orvctl " ORV_VERSION; }, "Show the version");
    asJSON->needs(version);
}

} // namespace orv
