#include "server/ServerOptions.h"

#include <array>
#include <limits>

#include <QCommandLineParser>

namespace {

struct OptionText {
    const char* name;
    const char* description;
    const char* value;
};

constexpr std::array kOptions{
    OptionText{"address", "IPv4 address to listen on (127.0.0.1).", "ADDRESS"},
    OptionText{"port", "Control port, TCP (3600); 0 lets the system pick.", "PORT"},
    OptionText{"discovery-port", "Discovery port, UDP (3601); 0 lets the system pick.", "PORT"},
    OptionText{"workspace", "Folder to serve: the one that holds vdk/ContourPath. Required.", "FOLDER"},
    OptionText{"host-name", "A name of this server; requests to other names are refused. May be repeated.",
               "NAME"},
    OptionText{"token-file", "File whose first line is the token that every request must carry.", "FILE"},
    OptionText{"keep", "Number of previous contents that are kept beside the folder at restores (3).",
               "COUNT"},
    OptionText{"list-kept", "List the kept contents, newest first, and exit.", nullptr},
    OptionText{"put-back",
               "Make the kept content of this TIME the workspace again and exit; no server may run.", "TIME"},
    OptionText{"serial", "Serial number given in discovery (100001).", "NUMBER"},
    OptionText{"model", "Device model given in discovery (Desk sensor).", "TEXT"},
    OptionText{"request-limit", "Largest body of a request in bytes (4294967296).", "BYTES"},
    OptionText{"connections", "Connections served at a time (32).", "COUNT"},
    OptionText{"idle-timeout", "Time for a request to begin (30000).", "MS"},
    OptionText{"head-timeout", "Time for the rest of its head to arrive (5000).", "MS"},
    OptionText{"transfer-timeout", "Time for a body to arrive, and for a reply to be received (180000).",
               "MS"},
    OptionText{"log", "File for the request log (standard output).", "FILE"},
    OptionText{"replay", "Replay mode at start: on or off (off).", "MODE"},
    OptionText{"restore-sets-replay", "Replay mode after every restore: on or off (as archived).", "MODE"},
    OptionText{"fault-delay", "Fault: delay each reply.", "MS"},
    OptionText{"fault-cut", "Fault: close the connection after this many bytes of a reply.", "BYTES"},
    OptionText{"fault-status", "Fault: answer with this status instead of carrying out the request.", "CODE"},
    OptionText{"fault-damage", "Fault: change bytes of the reply's body.", nullptr},
    OptionText{"fault-path", "Faults only for requests of this path.", "PATH"},
    OptionText{"fault-skip", "Faults only after this many of these requests (0).", "COUNT"},
    OptionText{"fault-count", "Faults for this many of these requests (all).", "COUNT"},
};

/// The values on the command line, checked as they are read.
class GivenValues final {
  public:
    explicit GivenValues(const QCommandLineParser& parser) : parser(parser) {}

    [[nodiscard]] bool Has(const char* name) const { return parser.isSet(QLatin1String(name)); }
    [[nodiscard]] std::string Text(const char* name) const {
        return parser.value(QLatin1String(name)).toStdString();
    }

    void Read(const char* name, std::vector<std::string>& values) const {
        for (const QString& value : parser.values(QLatin1String(name)))
            values.push_back(value.toStdString());
    }

    void Read(const char* name, std::string& value) const {
        if (Has(name))
            value = Text(name);
    }

    template<typename Number>
    void Read(const char* name, Number& value, std::uint64_t min = 0,
              std::uint64_t max = std::numeric_limits<Number>::max()) const {
        if (Has(name))
            value = static_cast<Number>(Integer(name, min, max));
    }

    void Read(const char* name, std::chrono::milliseconds& value, std::uint64_t min) const {
        constexpr std::uint64_t kOneDay = 86'400'000;
        if (Has(name))
            value = std::chrono::milliseconds(Integer(name, min, kOneDay));
    }

    template<typename Number>
    void Read(const char* name, std::optional<Number>& value, std::uint64_t min = 0,
              std::uint64_t max = std::numeric_limits<Number>::max()) const {
        if (Has(name))
            value = static_cast<Number>(Integer(name, min, max));
    }

    [[nodiscard]] bool Mode(const char* name) const {
        const std::string text = Text(name);
        if (text != "on" && text != "off")
            throw UsageError("--" + std::string(name) + " is on or off");
        return text == "on";
    }

  private:
    [[nodiscard]] std::uint64_t Integer(const char* name, std::uint64_t min, std::uint64_t max) const {
        bool isValid = false;
        const std::uint64_t value = parser.value(QLatin1String(name)).toULongLong(&isValid);
        if (!isValid || value < min || value > max)
            throw UsageError("--" + std::string(name) + " is a number from " + std::to_string(min) + " to " +
                             std::to_string(max));
        return value;
    }

    const QCommandLineParser& parser;
};

void ReadFaults(const GivenValues& given, FaultOptions& faults) {
    constexpr std::uint64_t kFirstStatus = 200;
    constexpr std::uint64_t kLastStatus = 599;
    given.Read("fault-delay", faults.fault.delay, 0);
    given.Read("fault-cut", faults.fault.cutAfter);
    given.Read("fault-status", faults.fault.status, kFirstStatus, kLastStatus);
    faults.fault.damage = given.Has("fault-damage");
    given.Read("fault-path", faults.path);
    given.Read("fault-skip", faults.skip);
    given.Read("fault-count", faults.count);
}

ServerOptions ReadOptions(const GivenValues& given) {
    ServerOptions options;
    given.Read("address", options.address);
    given.Read("port", options.port);
    given.Read("discovery-port", options.discoveryPort);
    given.Read("workspace", options.workspace);
    given.Read("serial", options.serialNumber);
    given.Read("model", options.model);
    given.Read("request-limit", options.requestLimit);
    given.Read("connections", options.connectionLimit, 1, 1000);
    given.Read("keep", options.keep, 0, 1000);
    given.Read("host-name", options.hostNames);
    given.Read("token-file", options.tokenFile);
    given.Read("idle-timeout", options.idleTimeout, 1);
    given.Read("head-timeout", options.headTimeout, 1);
    given.Read("transfer-timeout", options.transferTimeout, 1);
    given.Read("log", options.logFile);
    if (given.Has("replay"))
        options.replay = given.Mode("replay");
    if (given.Has("restore-sets-replay"))
        options.restoreSetsReplay = given.Mode("restore-sets-replay");
    given.Read("put-back", options.keptTime);
    if (given.Has("list-kept") && given.Has("put-back"))
        throw UsageError("--list-kept and --put-back cannot be combined");
    options.task = given.Has("list-kept")  ? ServerTask::ListKept
                   : given.Has("put-back") ? ServerTask::PutBack
                                           : ServerTask::Serve;
    ReadFaults(given, options.faults);
    if (options.workspace.empty())
        throw UsageError("--workspace is required");
    return options;
}

void Describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("A sensor server for a desk without sensors: serves one workspace folder."));
    parser.addHelpOption();
    parser.addVersionOption();
    for (const OptionText& option : kOptions) {
        QCommandLineOption known(QString::fromLatin1(option.name));
        known.setDescription(QString::fromLatin1(option.description));
        if (option.value != nullptr)
            known.setValueName(QString::fromLatin1(option.value));
        parser.addOption(known);
    }
}

} // namespace

std::variant<ServerOptions, UsageText> ParseServerOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    Describe(parser);
    if (!parser.parse(arguments))
        throw UsageError(parser.errorText().toStdString());
    if (parser.isSet(QStringLiteral("help")))
        return UsageText{parser.helpText().toStdString()};
    if (parser.isSet(QStringLiteral("version")))
        return UsageText{"ostra-server " CORVANE_VERSION "\n"};
    if (!parser.positionalArguments().isEmpty())
        throw UsageError("unknown argument " + parser.positionalArguments().constFirst().toStdString());
    return ReadOptions(GivenValues(parser));
}
