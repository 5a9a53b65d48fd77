#include "service/Client.h"

namespace orv {

// The program that is linked with the simulated calls knows no service: orvctl itself asks that.
ServiceAnswer askService(Request)
{
    return {std::nullopt, "only a machine file can be asked here (--simulate FILE)"};
}

} // namespace orv
