#pragma once

#include <QHash>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One option of a command. An option without a value name is a switch.
struct OptionText {
    QString name;      ///< without dashes
    QString valueName; ///< "FILE"
    QString description;
    QChar letter; ///< short form; null for none
};

/// The option that names the file for a command's result.
OptionText OutputOption(const QString& description);

/// What the command line gives a command. Every access checks its value.
/// @throws Failure with ExitCode::Misused for a value that is not understood
class Arguments {
  public:
    /// Reads the words after the command's name.
    /// @param most words that are no options; -1 for any number
    Arguments(const QStringList& words, const std::vector<OptionText>& options, int least, int most);

    /// The words that are no options, in UTF-8.
    [[nodiscard]] const std::vector<std::string>& Words() const { return positional; }
    [[nodiscard]] bool Has(const char* option) const;
    /// The option's value; empty when it is not given.
    [[nodiscard]] std::optional<std::string> Text(const char* option) const;
    [[nodiscard]] std::optional<std::int64_t> Whole(const char* option, std::int64_t least,
                                                    std::int64_t most) const;
    /// A finite number.
    [[nodiscard]] std::optional<double> Number(const char* option, double least, double most) const;
    /// WIDTHxHEIGHT, both from 1 to `most`.
    [[nodiscard]] std::optional<QSize> Size(const char* option, int most) const;
    /// One of several words.
    [[nodiscard]] std::optional<std::string> Choice(const char* option,
                                                    const std::vector<std::string>& choices) const;

  private:
    std::vector<std::string> positional;
    QHash<QString, QString> values; ///< of the options that are given, by name
};
