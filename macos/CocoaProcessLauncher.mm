#import "macos/CocoaProcessLauncher.h"

#import "macos/FoundationValue.h"

namespace orv {

namespace {

NSArray<NSString*>* foundationTexts(const std::vector<std::string>& texts)
{
    NSMutableArray<NSString*>* array = [NSMutableArray array];
    for (const auto& text : texts)
        [array addObject:foundationText(text)];
    return array;
}

// Read only here, after the exit: a child that writes more than a pipe holds is not served, on purpose.
std::string wholeOutput(NSPipe* pipe)
{
    @try {
        NSData* output = [pipe.fileHandleForReading readDataToEndOfFile];
        return {static_cast<const char*>(output.bytes), output.length};
    } @catch (NSException*) { // how a read error is told, which would end the process
        return {};
    }
}

} // namespace

void CocoaProcessLauncher::start(
    const std::string& path, const std::vector<std::string>& arguments, std::function<void(std::string output)> onExit)
{
    NSTask* task = [[NSTask alloc] init];
    NSPipe* pipe = [NSPipe pipe];
    task.qualityOfService = NSQualityOfServiceUserInteractive;
    task.launchPath = foundationText(path);
    task.arguments = foundationTexts(arguments);
    task.standardOutput = pipe;
    __block NSTask* running = task; // until the handler has run
    task.terminationHandler = ^(NSTask*) {
        @autoreleasepool {
            onExit(wholeOutput(pipe));
        }
        running = nil;
    };
    if (![task launchAndReturnError:nil])
        running = nil;
}

} // namespace orv
