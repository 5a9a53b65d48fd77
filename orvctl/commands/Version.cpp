#include "orvctl/commands/Commands.h"

#include "json/JSONWriter.h"

#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace orv {

namespace {

// ORV_SCHEMAS holds "orv.explain/1,…", after the files that are installed.
std::string versionDocument()
{
    Array schemas;
    std::istringstream names(ORV_SCHEMAS);
    for (std::string name; std::getline(names, name, ',');)
        schemas.push_back(name);
    Dictionary document;
    document.set("schema", std::string("orv.version/1"));
    document.set("version", std::string(ORV_VERSION));
    document.set("schemas", std::move(schemas));
    return writeJSON(document, KeyOrder::asListed);
}

} // namespace

void addVersion(Program& program)
{
    const auto json = std::make_shared<bool>(false);
    auto asJSON = program.addFlag("--json", *json, "With --version: as JSON, with all schemas");
    const auto text = [json] { return *json ? versionDocument() : "orvctl " ORV_VERSION; };
    asJSON.needs(program.addVersion(text, "Show the version"));
}

} // namespace orv
