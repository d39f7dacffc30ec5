# Tells the names that two sources of the same folder have to themselves, in unnamed namespaces: of
# functions, types and constants. The exit status is 1 where there are some.
FNR == 1 {
  isOwn = 0
  folder = FILENAME
  sub(/\/[^\/]*$/, "", folder)
}
/^namespace \{/ { isOwn = 1 }
/^}  \/\/ namespace$/ { isOwn = 0 }
!isOwn || !/^[A-Za-z]/ || /^(using|template|namespace|static_assert|extern|return) ?/ { next }
{
  name = ""
  if (match($0, /^(class|struct|enum class|union) [A-Za-z0-9_]+/)) {
    name = substr($0, RSTART, RLENGTH)
    sub(/.* /, "", name)
  } else if (match($0, /[A-Za-z0-9_]+\(/)) {
    name = substr($0, RSTART, RLENGTH - 1)
  } else if (match($0, /[A-Za-z0-9_]+(\[[^]]*\])* (=|\{)/)) {
    name = substr($0, RSTART)
    sub(/[^A-Za-z0-9_].*/, "", name)
  }
  if (name == "" || name ~ /^[A-Z_]+$/) next  # a macro makes names of its own
  key = folder "/" name
  if (key in first && first[key] != FILENAME) {
    print FILENAME ": " name " is in " first[key] ", too"
    status = 1
  }
  if (!(key in first)) first[key] = FILENAME
}
END { exit status }
