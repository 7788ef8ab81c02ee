// The layout of a database file: the nine tables' create statements and the texts that clear a table. This is the
// file format: every blank counts.
#pragma once

#include <string>

namespace tovr {

namespace table {
constexpr char kDBInfo[] = "DB_Info";
constexpr char kAttachDBList[] = "Attach_DB_List";
constexpr char kScreenInfo[] = "Screen_Info";
constexpr char kCoef[] = "Coef";
constexpr char kCoefInfo[] = "Coef_Info";
constexpr char kLumChromData[] = "LumChromData";
constexpr char kLumChromDataInfo[] = "LumChromDataInfo";
constexpr char kData[] = "Data";
constexpr char kDataInfo[] = "DataInfo";
}  // namespace table

// `name` is the table's own name; the others name the tables that its foreign keys refer to.
std::string createDBInfo(const std::string& name);
std::string createAttachDBList(const std::string& name);
std::string createScreenInfo(const std::string& name, const std::string& databases);
std::string createCoef(const std::string& name);
std::string createCoefInfo(const std::string& name, const std::string& coefs, const std::string& screens);
std::string createLumChromData(const std::string& name);
std::string createLumChromDataInfo(const std::string& name, const std::string& screens, const std::string& blobs);
std::string createData(const std::string& name);
std::string createDataInfo(const std::string& name, const std::string& screens, const std::string& blobs);

// Two statements in one text: remove every row, and let the next insert issue key 1 again. Two spellings that behave
// alike are part of the logged lines; which table uses which is fixed.
std::string clearSpaced(const std::string& name);
std::string clearDense(const std::string& name);

}  // namespace tovr
