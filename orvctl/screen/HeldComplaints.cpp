#include "orvctl/screen/HeldComplaints.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orv {

namespace {

int temporaryFile()
{
    const char* const folder = std::getenv("TMPDIR");
    auto path = std::string(folder && *folder ? folder : "/tmp") + "/orvctl-XXXXXX";
    const int file = mkstemp(path.data());
    if (file >= 0)
        unlink(path.c_str());
    return file;
}

} // namespace

HeldComplaints::HeldComplaints()
    : kept(temporaryFile())
{
    if (!kept || !isatty(STDERR_FILENO)) // elsewhere it spoils nothing
        return;
    std::fflush(stderr);
    original = FileDescriptor(dup(STDERR_FILENO));
    dup2(kept.get(), STDERR_FILENO);
}

HeldComplaints::~HeldComplaints()
{
    std::fflush(stderr);
    release();
}

void HeldComplaints::release()
{
    if (!original)
        return;
    dup2(original.get(), STDERR_FILENO);
    original.reset();
    lseek(kept.get(), 0, SEEK_SET);
    char part[4096];
    for (auto length = read(kept.get(), part, sizeof(part)); length > 0;
        length = read(kept.get(), part, sizeof(part))) {
        if (write(STDERR_FILENO, part, static_cast<std::size_t>(length)) < 0)
            return;
    }
}

} // namespace orv
