#include "tools/commandline/HelpText.h"

#include <algorithm>

namespace {

const QString kIndent = QStringLiteral("  ");

QString Heading(const OptionText& option) {
    const QString letter =
        option.letter.isNull() ? QStringLiteral("    ") : QStringLiteral("-%1, ").arg(option.letter);
    const QString value = option.valueName.isEmpty() ? QString() : QLatin1Char(' ') + option.valueName;
    return letter + QStringLiteral("--") + option.name + value;
}

/// Rows of two columns, the second aligned.
QString Table(const QVector<QPair<QString, QString>>& rows) {
    int width = 0;
    for (const auto& row : rows)
        width = std::max(width, row.first.size());
    QString table;
    for (const auto& row : rows)
        table += kIndent + row.first.leftJustified(width + 2) + row.second + QLatin1Char('\n');
    return table;
}

} // namespace

QString HelpOf(const CommandText& command) {
    QVector<QPair<QString, QString>> options;
    for (const OptionText& option : command.options)
        options.append({Heading(option), option.description});
    options.append({QStringLiteral("-h, --help"), QStringLiteral("show this help")});

    QString help = QStringLiteral("Usage: corvane-track %1 [OPTION...] %2\n\n%3.\n")
                       .arg(command.name, command.arguments, command.summary);
    if (!command.details.isEmpty())
        help += QLatin1Char('\n') + command.details;
    help += QStringLiteral("\nOptions:\n") + Table(options);
    if (!command.found.isEmpty())
        help += QStringLiteral("\nEnds with 1 when %1.\n").arg(command.found);
    return help;
}

QString OverviewOf(const Commands& commands) {
    QVector<QPair<QString, QString>> rows;
    for (const auto& command : commands) {
        const CommandText text = command->Text();
        rows.append({text.name, text.summary});
    }
    rows.append({QStringLiteral("completion"), QStringLiteral("Print the completion script for bash")});
    return QStringLiteral(
               "Usage: corvane-track COMMAND [OPTION...] FILE...\n\n"
               "Reads, checks, compares, draws and converts track files (.trk), and looks into backups\n"
               "(.osbak), without a display.\n\nCommands:\n") +
           Table(rows) +
           QStringLiteral(
               "\n\"corvane-track COMMAND --help\" describes a command; --version shows the version.\n"
               "\nExit codes:\n"
               "  0  done, nothing found\n"
               "  1  errors, differences or damage found and reported\n"
               "  2  arguments not understood\n"
               "  3  an input cannot be read\n"
               "  4  an output cannot be written; what was there before is as it was\n");
}
