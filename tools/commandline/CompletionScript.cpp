#include "tools/commandline/CompletionScript.h"

#include <QMap>
#include <QStringList>

namespace {

/// %1 the first words of all commands, %2 a case for each of them that has a second one, %3 a case for each
/// command with its options.
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
