#include "tests/proofs/Disk.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>

namespace kelvane::proofs {
namespace {

constexpr std::size_t kSector = 512;

std::string joined(const std::string& folder, const std::string& name) {
  return folder.empty() ? name : folder + "/" + name;
}

}  // namespace

Disk::Disk(const Tree& tree) {
  contents_.push_back({Entry::Kind::folder, "", ""});
  for (const auto& [path, entry] : tree) {
    const Place place = placeOf(path);
    now_[place.folder][place.name] = static_cast<Node>(contents_.size());
    contents_.push_back({entry.kind, entry.bytes, entry.bytes});
  }
  sure_ = now_;
}

Disk::Node Disk::find(const std::string& path) const {
  Node node = 0;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    const auto folder = now_.find(node);
    if (folder == now_.end()) return -1;
    const auto found = folder->second.find(path.substr(start, end - start));
    if (found == folder->second.end()) return -1;
    node = found->second;
    start = end + 1;
  }
  return node;
}

Disk::Place Disk::placeOf(const std::string& path) const {
  const std::size_t slash = path.rfind('/');
  const bool isTop = slash == std::string::npos;
  const Node folder = isTop ? 0 : find(path.substr(0, slash));
  if (folder < 0) throw std::runtime_error("the disk has no folder for " + path);
  return {folder, isTop ? path : path.substr(slash + 1)};
}

void Disk::apply(const Change& change, Names& names) {
  if (change.fromFolder >= 0) {
    auto& folder = names[change.fromFolder];
    const auto found = folder.find(change.fromName);
    // Unless another has taken the name meanwhile.
    if (found != folder.end() && found->second == change.node) folder.erase(found);
  }
  if (change.toFolder >= 0) names[change.toFolder][change.toName] = change.node;
}

void Disk::change(Change change) {
  apply(change, now_);
  changes_.push_back(std::move(change));
}

void Disk::make(const std::string& path, Content content) {
  const Place place = placeOf(path);
  const Node node = static_cast<Node>(contents_.size());
  contents_.push_back(std::move(content));
  change({node, -1, "", place.folder, place.name});
}

void Disk::makeFile(const std::string& path) { make(path, {Entry::Kind::file, "", ""}); }

void Disk::makeFolder(const std::string& path) { make(path, {Entry::Kind::folder, "", ""}); }

void Disk::makeLink(const std::string& path, const std::string& target) {
  make(path, {Entry::Kind::link, target, target});
}

void Disk::write(const std::string& path, std::size_t offset, const std::string& bytes) {
  std::string& now = contents_.at(static_cast<std::size_t>(find(path))).now;
  now.resize(std::max(now.size(), offset + bytes.size()));
  now.replace(offset, bytes.size(), bytes);
}

void Disk::resize(const std::string& path, std::size_t size) {
  Content& content = contents_.at(static_cast<std::size_t>(find(path)));
  content.now.resize(size);
  content.kept = std::min(content.kept, size);
}

void Disk::rename(const std::string& from, const std::string& to) {
  const Node node = find(from);
  if (node < 0) throw std::runtime_error("the disk has no " + from);
  const Place source = placeOf(from);
  const Place target = placeOf(to);
  change({node, source.folder, source.name, target.folder, target.name});
}

void Disk::remove(const std::string& path) {
  const Place place = placeOf(path);
  change({find(path), place.folder, place.name, -1, ""});
}

void Disk::makeSure(Content& content) {
  content.sure = content.now;
  content.kept = content.now.size();
}

void Disk::synchronise(const std::string& path) {
  const Node node = find(path);
  if (node < 0) throw std::runtime_error("the disk has no " + path);
  Content& content = contents_[static_cast<std::size_t>(node)];
  makeSure(content);
  for (Change& each : changes_) {
    // Of a renaming from folder to folder, half cannot be there.
    if (each.fromFolder == node || each.toFolder == node) each.lasts = true;
  }
  settle();
}

void Disk::synchroniseAll() {
  for (Content& content : contents_) makeSure(content);
  for (Change& each : changes_) each.lasts = true;
  settle();
}

void Disk::settle() {
  const auto end = std::find_if(changes_.begin(), changes_.end(),
                                [](const Change& each) { return !each.lasts; });
  for (auto each = changes_.begin(); each != end; ++each) apply(*each, sure_);
  changes_.erase(changes_.begin(), end);
}

// --- what may be left

std::string Disk::bytesOf(const Content& content, Bytes bytes) {
  const std::string& sure = content.sure;
  const std::string& now = content.now;
  if (content.kind != Entry::Kind::file || sure == now || bytes == Bytes::all) return now;
  if (bytes == Bytes::none) return sure;
  // The size is the new one already, and some sectors are not there yet.
  std::string found = sure.substr(0, content.kept);
  if (bytes == Bytes::cut) return found;
  found.resize(now.size());
  const std::size_t half = now.size() / 2 / kSector * kSector;
  if (bytes == Bytes::head) found.replace(0, half, now, 0, half);
  if (bytes == Bytes::tail) found.replace(half, std::string::npos, now, half);
  return found;
}

void Disk::addTo(Tree& tree, const Names& names, Node folder, const std::string& prefix,
                 Bytes bytes) const {
  const auto found = names.find(folder);
  if (found == names.end()) return;
  for (const auto& [name, node] : found->second) {
    const Content& content = contents_[static_cast<std::size_t>(node)];
    const std::string path = joined(prefix, name);
    tree[path] = {content.kind, 0, bytesOf(content, bytes)};
    if (content.kind == Entry::Kind::folder) addTo(tree, names, node, path, bytes);
  }
}

Tree Disk::treeOf(const Names& names, Bytes bytes) const {
  Tree tree;
  addTo(tree, names, 0, "", bytes);
  return tree;
}

Tree Disk::now() const { return treeOf(now_, Bytes::all); }

std::vector<Disk::Choice> Disk::choices() const {
  constexpr std::size_t kFew = 6;  // of so many every subset
  constexpr int kDrawn = 24;       // subsets of more
  std::vector<std::size_t> unsure;
  for (std::size_t i = 0; i < changes_.size(); ++i) {
    if (!changes_[i].lasts) unsure.push_back(i);
  }
  std::vector<Choice> all;
  const auto add = [&](bool isInOrder, const std::function<bool(std::size_t)>& isThere) {
    Choice choice = {std::vector<bool>(changes_.size(), true), isInOrder};
    for (std::size_t i = 0; i < unsure.size(); ++i) choice.isThere[unsure[i]] = isThere(i);
    all.push_back(std::move(choice));
  };
  for (std::size_t count = 0; count <= unsure.size(); ++count) {
    // Those that last are there: what was asked for before the last of them is in order only whole.
    const bool isInOrder = count == unsure.size() || isLastOfAll(unsure[count]);
    add(isInOrder, [&](std::size_t i) { return i < count; });
  }
  if (unsure.size() <= kFew) {
    for (std::size_t set = 0; set < std::size_t{1} << unsure.size(); ++set) {
      add(false, [&](std::size_t i) { return (set >> i & 1U) != 0; });
    }
    return all;
  }
  for (std::size_t one = 0; one < unsure.size(); ++one) {
    add(false, [&](std::size_t i) { return i == one; });
    add(false, [&](std::size_t i) { return i != one; });
  }
  std::mt19937 random(static_cast<std::mt19937::result_type>(changes_.size()));
  for (int i = 0; i < kDrawn; ++i) add(false, [&](std::size_t) { return random() % 2 == 0; });
  return all;
}

bool Disk::isLastOfAll(std::size_t change) const {
  return std::none_of(changes_.begin() + static_cast<std::ptrdiff_t>(change), changes_.end(),
                      [](const Change& each) { return each.lasts; });
}

void Disk::afterPowerLoss(const Look& look) const {
  const bool isSure = std::all_of(contents_.begin(), contents_.end(), [](const Content& content) {
    return content.sure == content.now;
  });
  for (const Choice& choice : choices()) {
    Names names = sure_;
    for (std::size_t i = 0; i < changes_.size(); ++i) {
      if (choice.isThere[i]) apply(changes_[i], names);
    }
    for (const Bytes bytes :
         {Bytes::none, Bytes::cut, Bytes::zeros, Bytes::head, Bytes::tail, Bytes::all}) {
      look({treeOf(names, bytes), choice.isInOrder});
      if (isSure) break;
    }
  }
}

}  // namespace kelvane::proofs
