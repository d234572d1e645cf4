#pragma once

#include <QString>

/// Makes the folder "Corvane" in the user's home folder where it is missing, and works in it from here on.
/// @return why that is not possible, as a sentence for the operator; empty when the folder can be written
QString EnterOwnFolder();
