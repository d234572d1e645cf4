#include "tools/commandline/HelpText.h"

#include <QMap>
#include <QStringList>

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

/// %1 is the first word of every command; %2 a case for each first word that has a second one; %3 a case with
/// the options of each command.
const QString kScript = QStringLiteral(
    R"(# Completion of corvane-track for bash; made by "corvane-track completion".
_corvane_track() {
  local word=${COMP_WORDS[COMP_CWORD]} words=
  if [ "$COMP_CWORD" -eq 1 ]; then
    words='%1'
  elif [ "$COMP_CWORD" -eq 2 ]; then
    case "${COMP_WORDS[1]}" in
%2    esac
  fi
  if [ -z "$words" ] && [[ $word == -* ]]; then
    case "${COMP_WORDS[1]} ${COMP_WORDS[2]}" in
%3    esac
  fi
  if [ -n "$words" ]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -F _corvane_track corvane-track
)");

QString Case(const QString& pattern, const QStringList& words) {
    return QStringLiteral("    %1) words='%2' ;;\n").arg(pattern, words.join(QLatin1Char(' ')));
}

QStringList OptionsOf(const CommandText& command) {
    QStringList options;
    for (const OptionText& option : command.options)
        options.append(QStringLiteral("--") + option.name);
    return options << QStringLiteral("--help");
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
    return QStringLiteral("Usage: corvane-track COMMAND [OPTION...] FILE...\n\n"
                          "Reads, checks, compares, draws and converts track files (.trk), and reads and "
                          "changes backups\n"
                          "(.osbak), without a display.\n\nCommands:\n") +
           Table(rows) +
           QStringLiteral(
               "\n\"corvane-track COMMAND --help\" describes a command; --version shows the version.\n"
               "\nExit codes:\n"
               "  0  done, nothing found\n"
               "  1  errors, differences or damage found and reported\n"
               "  2  invalid arguments\n"
               "  3  an input cannot be read\n"
               "  4  an output cannot be written; an existing file is unchanged\n");
}

QString CompletionScriptFor(const Commands& commands) {
    QStringList firstWords;
    QMap<QString, QStringList> secondWords;
    QString options;
    for (const auto& command : commands) {
        const CommandText text = command->Text();
        const QStringList name = text.name.split(QLatin1Char(' '));
        if (!firstWords.contains(name.first()))
            firstWords.append(name.first());
        if (name.size() > 1)
            secondWords[name.first()].append(name.last());
        options += Case(name.size() > 1 ? QStringLiteral("'%1'").arg(text.name)
                                        : QStringLiteral("'%1 '*").arg(text.name),
                        OptionsOf(text));
    }
    firstWords << QStringLiteral("completion") << QStringLiteral("--help") << QStringLiteral("--version");
    QString groups;
    for (auto group = secondWords.cbegin(); group != secondWords.cend(); ++group)
        groups += Case(group.key(), group.value());
    return kScript.arg(firstWords.join(QLatin1Char(' ')), groups, options);
}
