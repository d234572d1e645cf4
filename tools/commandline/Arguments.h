#pragma once

#include <QHash>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One option of a command.
struct OptionText {
    QString name;      ///< without dashes
    QString valueName; ///< "FILE"; empty for a switch
    QString description;
    QChar letter; ///< short form; null for none
};

/// An option without a value.
OptionText Switch(const QString& name, const QString& description);

/// The option that names the file for a command's result.
OptionText OutputOption(const QString& description);

/// The options and words that the command line gives a command. Each access checks the option's value.
/// @throws Failure with ExitCode::Misused for an invalid value
class Arguments {
  public:
    /// Reads the words after the command's name.
    /// @param min,max how many words may be no options; max -1 for any number
    Arguments(const QStringList& words, const std::vector<OptionText>& options, int min, int max);

    /// The words that are no options, in UTF-8.
    [[nodiscard]] const std::vector<std::string>& Words() const { return positional; }
    [[nodiscard]] bool Has(const char* option) const;
    /// The option's value; nullopt when it is not given.
    [[nodiscard]] std::optional<std::string> Text(const char* option) const;
    [[nodiscard]] std::optional<std::int64_t> Integer(const char* option, std::int64_t min,
                                                      std::int64_t max) const;
    /// A finite number.
    [[nodiscard]] std::optional<double> Number(const char* option, double min, double max) const;
    /// WIDTHxHEIGHT, both from 1 to `max`.
    [[nodiscard]] std::optional<QSize> Size(const char* option, int max) const;
    /// One of several words.
    [[nodiscard]] std::optional<std::string> Choice(const char* option,
                                                    const std::vector<std::string>& choices) const;

  private:
    std::vector<std::string> positional;
    QHash<QString, QString> values; ///< of the given options, by name
};
