// Further statements over "Coef_Info" rows: by region, type, area and cabinet. Part of the coefficient group's
// vocabulary; no operation issues them. Every blank counts.
//
// Rectangles are given as top, left, bottom, right, both edges inclusive. Texts are inserted as they stand, without
// escaping. The statements over "cabinetid" fail on files of this system, which have no such column; the two delete
// statements fail everywhere, for want of a blank before "where". Both are meant to stay so.
#pragma once

#include <cstdint>
#include <string>

namespace tovr {

// The rows of the type whose rectangle holds at least one corner of the given one: a test of corners, not of overlap.
std::string cornerQuery(const std::string& table, std::int32_t top, std::int32_t left, std::int32_t bottom,
                        std::int32_t right, std::int32_t type);
std::string cornerQuery(const std::string& table, std::int32_t top, std::int32_t left, std::int32_t bottom,
                        std::int32_t right, std::int32_t type, const std::string& cabinet);

std::string areaQuery(const std::string& table, std::int32_t area, std::int32_t type, const std::string& cabinet);
std::string typeQuery(const std::string& table, std::int32_t type, const std::string& cabinet);

std::string areaList();
std::string cabinetList();
std::string typeList();
std::string cabinetRectangles(const std::string& cabinet);

// Parameters: top, left, bottom, right, coeftype; the rename takes the new table name before them.
std::string deleteByRectangle(const std::string& table);
std::string renameByRectangle(const std::string& table);
// The caller appends the key.
std::string deleteByKey(const std::string& table);

}  // namespace tovr
