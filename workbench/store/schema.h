#pragma once

namespace store {

class Database;

constexpr int ApplicationId = 0x51435031;  ///< "QCP1", in the header of every project file
constexpr int SchemaVersion = 5;

/// Makes or migrates the tables from `version` (0: an empty file) up to SchemaVersion.
void migrate(Database& database, int version);

}  // namespace store
