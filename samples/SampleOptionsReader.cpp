#include "samples/SampleOptionsReader.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace {

template<typename Number>
Number ReadNumber(const std::string& option, const std::string& text, Number lowest, Number highest) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest)
        throw BadArgument(option + " cannot be \"" + text + "\"");
    return value;
}

/// Whether the text is the second of two words; it must be one of them.
bool IsSecond(const std::string& option, const std::string& text, const char* first, const char* second) {
    if (text != first && text != second)
        throw BadArgument(option + " cannot be \"" + text + "\"");
    return text == second;
}

void TakeOption(SampleRequest& request, const std::string& option, const std::string& text) {
    constexpr int kMaxSide = 100'000;
    if (option == "--seed")
        request.seed = ReadNumber<std::uint32_t>(option, text, 0, std::numeric_limits<std::uint32_t>::max());
    else if (option == "--width")
        request.width = ReadNumber(option, text, 2, kMaxSide);
    else if (option == "--height")
        request.height = ReadNumber(option, text, 2, kMaxSide);
    else if (option == "--format")
        request.options.format =
            IsSecond(option, text, "text", "binary") ? TrackFormat::Binary : TrackFormat::Text;
    else if (option == "--part")
        request.kind =
            IsSecond(option, text, "groove", "seam") ? MachinedPart::Kind::Seam : MachinedPart::Kind::Groove;
    else
        throw BadArgument("unknown option " + option);
}

SampleRequest::Task ReadTask(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        throw BadArgument("nothing to do");
    if (arguments[0] == "--help")
        return SampleRequest::Task::Help;
    if (arguments[0] != "track" && arguments[0] != "workspace")
        throw BadArgument("unknown task " + arguments[0]);
    if (arguments.size() < 2 || arguments[1].empty())
        throw BadArgument(arguments[0] + " needs a name");
    return arguments[0] == "track" ? SampleRequest::Task::Track : SampleRequest::Task::Workspace;
}

} // namespace

SampleRequest ReadSampleRequest(const std::vector<std::string>& arguments) {
    SampleRequest request;
    request.task = ReadTask(arguments);
    if (request.task == SampleRequest::Task::Help)
        return request;
    request.path = arguments[1];
    const bool isTrack = request.task == SampleRequest::Task::Track;
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        if (!isTrack && option != "--seed")
            throw BadArgument("unknown option " + option);
        if (option == "--no-paths") {
            request.options.paths = false;
            continue;
        }
        if (i + 1 == arguments.size())
            throw BadArgument(option + " needs a value");
        TakeOption(request, option, arguments[++i]);
    }
    return request;
}
