# shellcheck shell=bash
# Sourced: what a person tries first, with the command or function `tovrdb`, in the folder one is in. Its name for the
# screen is the argument.
tryTool() {
  tovrdb create wall.db --type 0
  tovrdb screen add wall.db --name "$1" --rect 0,0,63,31
  tovrdb sample -o wall.npy --size 64x32
  tovrdb coef put wall.db --type 1 --at 0,0 wall.npy
  tovrdb check wall.db
  tovrdb coef get wall.db --type 1 --rect 0,0,63,31 -o back.npy
  cmp wall.npy back.npy
}
