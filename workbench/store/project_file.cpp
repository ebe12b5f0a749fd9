#include "workbench/store/project_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "workbench/exchange/source_document.h"
#include "workbench/records/project_templates.h"
#include "workbench/store/database.h"
#include "workbench/store/from_source.h"
#include "workbench/store/project_rows.h"
#include "workbench/store/schema.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace store {
namespace {

// The engine's error numbers; the upper bytes of an extended one say more than is needed here.
enum EngineError : int {
  Permission = 3,
  Busy = 5,
  LockedTable = 6,
  ReadOnly = 8,
  InputOutput = 10,
  Corrupt = 11,
  Full = 13,
  CannotOpen = 14,
  NotADatabase = 26,
};

class Failed : public std::runtime_error {
 public:
  Failed(FailureKind kind, const QString& message)
      : std::runtime_error(message.toStdString()), failure{kind, message} {}
  const Failure failure;
};

std::filesystem::path native(const QString& path) {
#ifdef Q_OS_UNIX
  return QFile::encodeName(path).toStdString();
#else
  return path.toStdWString();
#endif
}

/// The files that this program has open.
QStringList& openFiles() {
  static QStringList paths;
  return paths;
}

QString shown(const QString& path) {
  return QDir::toNativeSeparators(path);
}

Failed notAProject(const QString& path) {
  return {FailureKind::NotAProject,
          QStringLiteral("“%1”不是成本测算工程文件，请选择由本程序建立的工程（*.qcp）。")
              .arg(shown(path))};
}

Failed damaged(const QString& path, const QString& what) {
  return {FailureKind::Damaged,
          QStringLiteral("工程文件“%1”已损坏：%2。\n请用该文件的备份打开，或由源文件重新新建工程。")
              .arg(shown(path), what)};
}

Failed locked(const QString& path) {
  return {
      FailureKind::Locked,
      QStringLiteral("工程文件“%1”正被另一个程序打开，请先在那里关闭它再试。").arg(shown(path))};
}

Failed noPermission(const QString& path) {
  return {FailureKind::NoPermission,
          QStringLiteral("没有读写工程文件“%1”及其所在文件夹的权限，"
                         "请修改权限，或把文件复制到自己的文件夹中再打开。")
              .arg(shown(path))};
}

/// The engine speaks English: its words only follow the Chinese ones, for whoever helps the user.
QString technical(const QString& words) {
  return QStringLiteral("（技术信息：%1）").arg(words.trimmed());
}

/// Why the engine could not write.
QString writeProblem(const SqlError& error) {
  switch (error.code() & 0xff) {
    case Full:
      return QStringLiteral("磁盘空间不足");
    case Permission:
    case ReadOnly:
    case CannotOpen:
      return QStringLiteral("没有写入权限");
    case InputOutput:
      return QStringLiteral("磁盘读写出错") + technical(QString::fromUtf8(error.what()));
    default:
      return QStringLiteral("数据库拒绝写入") + technical(QString::fromUtf8(error.what()));
  }
}

Failed cannotWrite(const QString& path, const QString& problem) {
  return {FailureKind::Unwritable,
          QStringLiteral("无法写入工程文件“%1”：%2。请检查磁盘空间和文件权限后再试。")
              .arg(shown(path), problem)};
}

Failed fromEngine(const QString& path, const SqlError& error) {
  switch (error.code() & 0xff) {
    case Busy:
    case LockedTable:
      return locked(path);
    case Permission:
    case ReadOnly:
    case CannotOpen:
      return noPermission(path);
    case InputOutput:
    case Full:
      return cannotWrite(path, writeProblem(error));
    case Corrupt:
      return damaged(path, QStringLiteral("数据库结构不完整"));
    case NotADatabase:
      return damaged(path, QStringLiteral("文件内容无法识别"));
    default:
      return damaged(
          path, QStringLiteral("数据表与本程序不符") + technical(QString::fromUtf8(error.what())));
  }
}

/// Refuses what is no project file, by its header alone.
void checkHeader(const QString& path) {
  // Reading a file that is open here would end its lock: closing any handle of it does.
  const QStringList& open = openFiles();
  if (std::any_of(open.begin(), open.end(),
                  [&path](const QString& other) { return isSameFile(path, other); })) {
    throw Failed(
        FailureKind::Locked,
        QStringLiteral("工程文件“%1”已经在本程序中打开，请先在这里关闭它再试。").arg(shown(path)));
  }
  const QFileInfo info(path);
  if (!info.exists()) {
    throw Failed(FailureKind::Missing,
                 QStringLiteral("工程文件“%1”不存在，可能已被移动、改名或删除，请检查路径。")
                     .arg(shown(path)));
  }
  if (!info.isFile()) throw notAProject(path);
  QFile file(path);
  if (!info.isReadable() || !info.isWritable() || !QFileInfo(info.absolutePath()).isWritable() ||
      !file.open(QIODevice::ReadOnly)) {
    throw noPermission(path);
  }
  const QByteArray header = file.read(100);
  if (!header.startsWith(QByteArray("SQLite format 3\0", 16))) throw notAProject(path);
  if (header.size() < 100) throw damaged(path, QStringLiteral("文件不完整"));
  if (qFromBigEndian<qint32>(header.constData() + 68) != ApplicationId) throw notAProject(path);
}

/// Locks the file for this process. The lock is the operating system's and ends with the process.
void lock(Database& database) {
  database.run(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
  database.run(QStringLiteral("PRAGMA synchronous = FULL"));
  database.run(QStringLiteral("PRAGMA foreign_keys = ON"));
  database.run(QStringLiteral("BEGIN EXCLUSIVE"));
  database.run(QStringLiteral("COMMIT"));
}

void checkContent(Database& database, const QString& path) {
  const int version = database.value(QStringLiteral("PRAGMA user_version")).toInt();
  if (version > SchemaVersion) {
    throw Failed(FailureKind::Newer,
                 QStringLiteral("工程文件“%1”由更新版本的程序保存（文件版本 %2，本程序支持到 %3），"
                                "请升级本程序后再打开。")
                     .arg(shown(path))
                     .arg(version)
                     .arg(SchemaVersion));
  }
  if (version < 1) throw damaged(path, QStringLiteral("没有文件版本"));
  const QString found = database.value(QStringLiteral("PRAGMA quick_check(1)")).toString();
  if (found != QStringLiteral("ok")) {
    throw damaged(path, QStringLiteral("数据库结构不一致") + technical(found));
  }
  const QVariant table = database.value(QStringLiteral("PRAGMA foreign_key_check"));
  if (!table.isNull()) {
    throw damaged(path, QStringLiteral("数据表 %1 引用的记录不存在").arg(table.toString()));
  }
  if (version < SchemaVersion) {
    Transaction transaction(database);
    migrate(database, version);
    transaction.commit();
  }
}

RowProgress rowProgress(const Progress& progress, int from, int to, qint64 rows) {
  if (!progress) return {};
  return [progress, from, to, rows](qint64 done) {
    const qint64 share = rows > 0 ? qMin(done, rows) * (to - from) / rows : 0;
    return progress(from + static_cast<int>(share));
  };
}

/// Makes a rename durable: the directory's own entry must reach the disk.
void syncDirectory(const QString& path) {
#ifdef Q_OS_UNIX
  const int directory = ::open(QFile::encodeName(QFileInfo(path).absolutePath()), O_RDONLY);
  if (directory < 0) return;
  ::fsync(directory);
  ::close(directory);
#else
  Q_UNUSED(path)
#endif
}

const char* const SideFiles[] = {"-wal", "-shm", "-journal"};

void removeWithSideFiles(const QString& path) {
  QFile::remove(path);
  for (const char* side : SideFiles) QFile::remove(path + QLatin1String(side));
}

void replaceFile(const QString& from, const QString& to) {
  std::error_code error;
  std::filesystem::rename(native(from), native(to), error);
  if (!error) return;
  throw cannotWrite(to, QStringLiteral("不能换上新写好的文件") +
                            technical(QString::fromStdString(error.message())));
}

/// Gives the finished `part` its name, durably.
void moveToPlace(const QString& part, const QString& path) {
  // A log that a killed program left beside the old file must not be taken for the new one's.
  for (const char* side : SideFiles) QFile::remove(path + QLatin1String(side));
  replaceFile(part, path);
  syncDirectory(path);
}

void checkTarget(const QString& path, bool replace) {
  const QFileInfo info(path);
  const QFileInfo folder(info.absolutePath());
  if (!folder.isDir()) {
    throw Failed(
        FailureKind::Missing,
        QStringLiteral("文件夹“%1”不存在，请先建立它或另选位置。").arg(shown(info.absolutePath())));
  }
  if (!folder.isWritable()) throw noPermission(path);
  if (!info.exists()) return;
  if (!replace || info.isDir()) {
    throw Failed(FailureKind::Exists,
                 QStringLiteral("文件“%1”已存在，请换一个文件名。").arg(shown(path)));
  }
  try {
    // Whoever has it open must not lose it. Anything else may be replaced, damaged files too.
    Database database(path);
    lock(database);
  } catch (const SqlError& error) {
    if ((error.code() & 0xff) == Busy) throw locked(path);
  }
}

}  // namespace

bool isSameFile(const QString& path, const QString& other) {
  std::error_code error;
  return std::filesystem::equivalent(native(path), native(other), error);
}

ProjectFile::ProjectFile(const QString& path) : path_(QFileInfo(path).absoluteFilePath()) {
  openFiles().append(path_);
}

ProjectFile::~ProjectFile() {
  openFiles().removeOne(path_);
}

bool ProjectFile::create(const QString& path, const exchange::SourceDocument* source,
                         const NewProject& answers, Failure& failure, const Progress& progress,
                         bool replace) {
  const QString part = path + QStringLiteral(".new");
  try {
    checkTarget(path, replace);
    const Failed cancelled(FailureKind::Cancelled, QStringLiteral("已取消新建工程。"));
    records::Project project;
    qint64 rows = 1;
    if (source != nullptr) {
      const exchange::Counts counts = exchange::countsOf(*source);
      const RowProgress filling =
          rowProgress(progress, 0, 30, static_cast<qint64>(counts.resources));
      rows = static_cast<qint64>(counts.bills) + 2 * static_cast<qint64>(counts.resources);
      const bool filled = fillFromSource(project, *source, [&](std::size_t done) {
        return !filling || filling(static_cast<qint64>(done));
      });
      if (!filled) throw cancelled;
    } else {
      records::fillFromTemplate(project, answers.projectTemplate.toStdString());
    }
    project.facts.name = answers.name.toStdString();
    project.facts.costType = answers.costType.toStdString();
    project.facts.reportTemplate = answers.reportTemplate.toStdString();
    project.facts.costPlan = answers.costPlan.toStdString();

    removeWithSideFiles(part);
    {
      Database database(part);
      database.run(QStringLiteral("PRAGMA synchronous = FULL"));
      database.run(QStringLiteral("PRAGMA foreign_keys = ON"));
      database.run(QStringLiteral("PRAGMA application_id = %1").arg(ApplicationId));
      Transaction transaction(database);
      migrate(database, 0);
      if (!writeProject(database, project, rowProgress(progress, 30, 99, rows))) throw cancelled;
      transaction.commit();
      // Remembered in the file: whoever opens it writes ahead.
      database.run(QStringLiteral("PRAGMA journal_mode = WAL"));
    }
    if (progress && !progress(99)) throw cancelled;
    moveToPlace(part, path);
    if (progress) progress(100);
    return true;
  } catch (const Failed& failed) {
    failure = failed.failure;
  } catch (const SqlError& error) {
    failure = cannotWrite(path, writeProblem(error)).failure;
  } catch (const std::overflow_error&) {
    failure = {FailureKind::Unwritable,
               QStringLiteral("源文件中的数量或单价过大，汇总后超出可计算的范围，未新建工程。")};
  }
  removeWithSideFiles(part);
  return false;
}

std::unique_ptr<ProjectFile> ProjectFile::open(const QString& path, Failure& failure,
                                               const Progress& progress) {
  try {
    checkHeader(path);
    std::unique_ptr<ProjectFile> file(new ProjectFile(path));
    file->database_ = std::make_unique<Database>(path);
    lock(*file->database_);
    checkContent(*file->database_, path);
    file->project_ = std::make_unique<records::Project>();
    const qint64 rows =
        progress ? file->database_
                       ->value(QStringLiteral("SELECT (SELECT count(*) FROM resource_item) +"
                                              " (SELECT count(*) FROM budget_item)"))
                       .toLongLong()
                 : 0;
    if (!readProject(*file->database_, *file->project_, rowProgress(progress, 0, 100, rows))) {
      throw Failed(FailureKind::Cancelled, QStringLiteral("已取消打开工程。"));
    }
    failure = {};
    return file;
  } catch (const Failed& failed) {
    failure = failed.failure;
  } catch (const SqlError& error) {
    failure = fromEngine(path, error).failure;
  } catch (const BadRows& rows) {
    failure = damaged(path, QString::fromUtf8(rows.what())).failure;
  } catch (const std::overflow_error&) {
    failure = damaged(path, QStringLiteral("有数值超出可计算的范围")).failure;
  }
  return nullptr;
}

bool ProjectFile::copyTo(const QString& path, Failure& failure) const {
  const QString part = path + QStringLiteral(".new");
  try {
    checkTarget(path, true);
    removeWithSideFiles(part);
    QString quoted = part;
    quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
    database_->run(QStringLiteral("VACUUM INTO '%1'").arg(quoted));
    Database(part).run(QStringLiteral("PRAGMA journal_mode = WAL"));
    moveToPlace(part, path);
    return true;
  } catch (const Failed& failed) {
    failure = failed.failure;
  } catch (const SqlError& error) {
    failure = cannotWrite(path, writeProblem(error)).failure;
  }
  removeWithSideFiles(part);
  return false;
}

bool ProjectFile::commit(const records::ChangeSet& changes, QString& message) {
  try {
    Transaction transaction(*database_);
    writeChanges(*database_, *project_, changes);
    transaction.commit();
    return true;
  } catch (const SqlError& error) {
    message = QStringLiteral("修改未能保存到“%1”，已撤回：%2。\n请检查磁盘空间和文件权限后再试。")
                  .arg(shown(path_), writeProblem(error));
    return false;
  }
}

}  // namespace store
