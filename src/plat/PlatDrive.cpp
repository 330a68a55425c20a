// Free space and kind of the file system that holds a path.
#include "plat/PlatDrive.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

// File systems whose type alone tells the kind. Numbers are those that statfs gives; the ones that
// the kernel's header lacks are named here.
constexpr unsigned int CIFS = 0xFF534D42;
constexpr unsigned int V9FS = 0x01021997;
constexpr unsigned int LUSTRE = 0x0BD00BD0;
constexpr unsigned int GFS = 0x01161970;
constexpr unsigned int FUSE = 0x65735546;

struct TypeKind {
  unsigned int type;
  DriveKind kind;
};

constexpr TypeKind KINDS[] = {
    {NFS_SUPER_MAGIC, DriveKind::remote},  {SMB_SUPER_MAGIC, DriveKind::remote},
    {SMB2_SUPER_MAGIC, DriveKind::remote}, {CIFS, DriveKind::remote},
    {CEPH_SUPER_MAGIC, DriveKind::remote}, {CODA_SUPER_MAGIC, DriveKind::remote},
    {AFS_SUPER_MAGIC, DriveKind::remote},  {AFS_FS_MAGIC, DriveKind::remote},
    {NCP_SUPER_MAGIC, DriveKind::remote},  {V9FS, DriveKind::remote},
    {LUSTRE, DriveKind::remote},           {GFS, DriveKind::remote},
    {TMPFS_MAGIC, DriveKind::ramDisk},     {RAMFS_MAGIC, DriveKind::ramDisk},
    {ISOFS_SUPER_MAGIC, DriveKind::cdrom}, {PROC_SUPER_MAGIC, DriveKind::unknown},
    {SYSFS_MAGIC, DriveKind::unknown},     {CGROUP2_SUPER_MAGIC, DriveKind::unknown},
};

constexpr unsigned int RAM_DISK_MAJOR = 1;
constexpr unsigned int CDROM_MAJOR = 11;

// The block device's own word; a partition has none, its disk (one directory up) has.
bool isRemovable(dev_t device) {
  const std::string block =
      "/sys/dev/block/" + std::to_string(major(device)) + ':' + std::to_string(minor(device));
  for (const char* file : {"/removable", "/../removable"}) {
    const Descriptor opened(::open((block + file).c_str(), O_RDONLY | O_CLOEXEC));
    char flag = '0';
    if (opened.isOpen() && ::read(opened.get(), &flag, 1) == 1) {
      return flag == '1';
    }
  }
  return false;
}

// Device numbers without a device (major 0) stand for what has no single disk beneath it: for a
// file system in user space most probably a network, else a local file system over several disks.
DriveKind kindOfDevice(dev_t device, unsigned int type) {
  switch (major(device)) {
    case 0:
      return type == FUSE ? DriveKind::remote : DriveKind::fixed;
    case RAM_DISK_MAJOR:
      return DriveKind::ramDisk;
    case CDROM_MAJOR:
      return DriveKind::cdrom;
    default:
      return isRemovable(device) ? DriveKind::removable : DriveKind::fixed;
  }
}

}  // namespace

int freeSpace(std::string_view path, std::uint64_t& bytes) {
  const NativePath native = NativePath::ofDirectory(path);
  struct statvfs space {};
  if (repeatInterrupted([&] { return ::statvfs(native.c_str(), &space); }) < 0) {
    return native.fail("statvfs", errno);
  }
  bytes = std::uint64_t{space.f_bavail} * space.f_frsize;
  return 0;
}

int driveKind(std::string_view path, DriveKind& kind) {
  const NativePath native = NativePath::ofDirectory(path);
  struct statfs system {};
  struct stat file {};
  if (repeatInterrupted([&] { return ::statfs(native.c_str(), &system); }) < 0 ||
      ::stat(native.c_str(), &file) < 0) {
    return native.fail("statfs", errno);
  }
  const auto type = static_cast<unsigned int>(system.f_type);
  const auto* known = std::find_if(std::begin(KINDS), std::end(KINDS),
                                   [type](const TypeKind& entry) { return entry.type == type; });
  kind = known != std::end(KINDS) ? known->kind : kindOfDevice(file.st_dev, type);
  return 0;
}

}  // namespace plat
