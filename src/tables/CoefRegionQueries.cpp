#include "tables/CoefRegionQueries.h"

namespace tovr {
namespace {

// The corner query up to the type's number; the callers close it. The uneven blanks are part of the text.
std::string cornerQueryHead(const std::string& table, std::int32_t top, std::int32_t left, std::int32_t bottom,
                            std::int32_t right, std::int32_t type) {
  const std::string t = std::to_string(top);
  const std::string l = std::to_string(left);
  const std::string b = std::to_string(bottom);
  const std::string r = std::to_string(right);
  return "select * from " + table + " where ((((" +                                                                //
         t + " >= top and bottom >= " + t + ")            and (left <=" + l + " and right >= " + l + ")) or ((" +  //
         t + " >= top and bottom >= " + t + ") and (" + r + ">= left and right >= " + r + ")) or ((" +             //
         b + ">= top and bottom >= " + b + ") and (left <=" + l + " and right >= " + l + ")) or ((" +              //
         b + " >= top and bottom >= " + b + ") and (" + r + " >= left and right >= " + r + ")))" +                 //
         " and coeftype =" + std::to_string(type);
}

constexpr char kWhereRectangle[] =
    "where top = ?            and left = ? and bottom = ? and right = ? and coeftype = ?";

}  // namespace

std::string cornerQuery(const std::string& table, std::int32_t top, std::int32_t left, std::int32_t bottom,
                        std::int32_t right, std::int32_t type) {
  return cornerQueryHead(table, top, left, bottom, right, type) + ")";
}

std::string cornerQuery(const std::string& table, std::int32_t top, std::int32_t left, std::int32_t bottom,
                        std::int32_t right, std::int32_t type, const std::string& cabinet) {
  return cornerQueryHead(table, top, left, bottom, right, type) + " and cabinetid='" + cabinet + "')";
}

std::string areaQuery(const std::string& table, std::int32_t area, std::int32_t type, const std::string& cabinet) {
  return "select * from " + table + " where (areaid = " + std::to_string(area) +
         " and coeftype = " + std::to_string(type) + " and cabinetid='" + cabinet + "')";
}

std::string typeQuery(const std::string& table, std::int32_t type, const std::string& cabinet) {
  return "select * from " + table + " where (coeftype = " + std::to_string(type) + " and cabinetid='" + cabinet + "')";
}

std::string areaList() { return "select areaid from Coef_Info"; }

std::string cabinetList() { return "select cabinetid from Coef_Info"; }

std::string typeList() { return "select coeftype from Coef_Info"; }

std::string cabinetRectangles(const std::string& cabinet) {
  return "select top, left, bottom, right from Coef_Info where cabinetid = '" + cabinet + "';";
}

std::string deleteByRectangle(const std::string& table) { return "delete from " + table + kWhereRectangle; }

std::string renameByRectangle(const std::string& table) {
  return "update " + table + " set coeftablename=? " + kWhereRectangle;
}

std::string deleteByKey(const std::string& table) { return "delete from " + table + "where id = "; }

}  // namespace tovr
