#include "tools/commandline/Arguments.h"

#include "tools/commandline/Failure.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cmath>

namespace {

[[noreturn]] void Misuse(const std::string& message) {
    throw Failure(ExitCode::Misused, message);
}

QCommandLineOption Known(const OptionText& option) {
    QStringList names(option.name);
    if (!option.letter.isNull())
        names.prepend(option.letter);
    QCommandLineOption known(names);
    known.setValueName(option.valueName);
    return known;
}

std::string Plain(double number) {
    return QString::number(number).toStdString();
}

} // namespace

OptionText Switch(const QString& name, const QString& description) {
    return {name, {}, description, {}};
}

OptionText OutputOption(const QString& description) {
    return {QStringLiteral("output"), QStringLiteral("FILE"), description, QLatin1Char('o')};
}

Arguments::Arguments(const QStringList& words, const std::vector<OptionText>& options, int min, int max) {
    QCommandLineParser parser;
    for (const OptionText& option : options)
        parser.addOption(Known(option));
    if (!parser.parse(QStringList(QStringLiteral("corvane-track")) + words))
        Misuse(parser.errorText().toStdString());
    for (const QString& word : parser.positionalArguments())
        positional.push_back(word.toStdString());
    for (const OptionText& option : options)
        if (parser.isSet(option.name))
            values.insert(option.name, parser.value(option.name));
    const auto count = static_cast<int>(positional.size());
    if (count < min)
        Misuse("too few arguments");
    if (max >= 0 && count > max)
        Misuse("unexpected argument '" + positional[static_cast<std::size_t>(max)] + "'");
}

bool Arguments::Has(const char* option) const {
    return values.contains(QLatin1String(option));
}

std::optional<std::string> Arguments::Text(const char* option) const {
    if (!Has(option))
        return std::nullopt;
    return values.value(QLatin1String(option)).toStdString();
}

std::optional<std::int64_t> Arguments::Integer(const char* option, std::int64_t min, std::int64_t max) const {
    if (!Has(option))
        return std::nullopt;
    bool isValid = false;
    const std::int64_t value = values.value(QLatin1String(option)).toLongLong(&isValid);
    if (!isValid || value < min || value > max)
        Misuse("--" + std::string(option) + " is an integer from " + std::to_string(min) + " to " +
               std::to_string(max));
    return value;
}

std::optional<double> Arguments::Number(const char* option, double min, double max) const {
    if (!Has(option))
        return std::nullopt;
    bool isValid = false;
    const double value = values.value(QLatin1String(option)).toDouble(&isValid);
    if (!isValid || !std::isfinite(value) || value < min || value > max)
        Misuse("--" + std::string(option) + " is a number from " + Plain(min) + " to " + Plain(max));
    return value;
}

std::optional<QSize> Arguments::Size(const char* option, int max) const {
    if (!Has(option))
        return std::nullopt;
    const QStringList sides = values.value(QLatin1String(option)).split(QLatin1Char('x'));
    bool isValid[2] = {};
    const QSize size(sides.value(0).toInt(&isValid[0]), sides.value(1).toInt(&isValid[1]));
    if (sides.size() != 2 || !isValid[0] || !isValid[1] || size.isEmpty() || size.width() > max ||
        size.height() > max)
        Misuse("--" + std::string(option) + " is WIDTHxHEIGHT, both from 1 to " + std::to_string(max));
    return size;
}

std::optional<std::string> Arguments::Choice(const char* option,
                                             const std::vector<std::string>& choices) const {
    std::optional<std::string> text = Text(option);
    if (!text || std::find(choices.begin(), choices.end(), *text) != choices.end())
        return text;
    std::string list;
    for (const std::string& choice : choices)
        list += (list.empty() ? "" : " or ") + choice;
    Misuse("--" + std::string(option) + " is " + list);
}
