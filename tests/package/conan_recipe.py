#!/usr/bin/env python3
"""Walks the steps of "conan create" on packaging/conan with a stand-in for Conan, which Debian does
not have, and runs a customer of the package: conan_recipe.py SOURCE_DIR COMPILER

The stand-in has what the recipe calls and no more: another call fails. What Conan itself would check
or reject stays untested.
"""
import collections
import fnmatch
import importlib.util
import os
import shutil
import subprocess
import sys
import tempfile
import types

source_dir, compiler = os.path.abspath(sys.argv[1]), sys.argv[2]
here = os.path.dirname(os.path.abspath(__file__))


class Info:
    def __init__(self):
        self.properties, self.libs, self.requires, self.defines = {}, [], [], []
        self.components = collections.defaultdict(Info) if type(self) is PackageInfo else None

    def set_property(self, name, value):
        self.properties[name] = value


class PackageInfo(Info):
    pass


class ConanFile:
    def __init__(self):
        self.folders, self.cpp_info = types.SimpleNamespace(), PackageInfo()
        self.options = types.SimpleNamespace(**self.default_options)
        self.settings = types.SimpleNamespace(arch="x86_64")
        self.required = []

    def requires(self, reference, visible):
        assert not visible, "customers need none of what the build needs"
        self.required.append(reference.split("/")[0])


class CMakeToolchain:
    def __init__(self, conanfile):
        self.conanfile = conanfile

    def generate(self):
        with open(os.path.join(self.conanfile.generators_folder, "cache.cmake"), "w") as file:
            for name, value in (("BUILD_SHARED_LIBS", self.conanfile.options.shared),
                                ("CMAKE_CXX_COMPILER", compiler), ("CMAKE_BUILD_TYPE", "Debug"),
                                ("CMAKE_INSTALL_LIBDIR", "lib")):
                file.write(f'set({name} "{value}" CACHE STRING "")\n')


class CMake:
    def __init__(self, conanfile):
        self.conanfile = conanfile

    def configure(self):
        run("cmake", "-S", self.conanfile.source_folder, "-B", self.conanfile.build_folder, "-G",
            "Ninja", "-C", os.path.join(self.conanfile.generators_folder, "cache.cmake"))

    def build(self):
        run("cmake", "--build", self.conanfile.build_folder)

    def install(self):
        run("cmake", "--install", self.conanfile.build_folder, "--prefix",
            self.conanfile.package_folder)


def run(*command, **more):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **more)


def copy(_conanfile, pattern, src, dst, excludes=()):
    for folder, folders, files in os.walk(src):
        if folder == src:
            folders[:] = [name for name in folders if name not in (".git", "build")]
        for name in files:
            path = os.path.relpath(os.path.join(folder, name), src)
            if fnmatch.fnmatch(path, pattern) and not any(
                    fnmatch.fnmatch(path, exclude) for exclude in excludes):
                os.makedirs(os.path.dirname(os.path.join(dst, path)), exist_ok=True)
                shutil.copy2(os.path.join(src, path), os.path.join(dst, path))


def load(_conanfile, path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def rmdir(_conanfile, path):
    shutil.rmtree(path, ignore_errors=True)


def load_recipe(path):
    stand_in = {
        "conan": {"ConanFile": ConanFile},
        "conan.tools": {},
        "conan.tools.cmake": {"CMake": CMake, "CMakeToolchain": CMakeToolchain,
                              "cmake_layout": lambda conanfile: None},
        "conan.tools.files": {"copy": copy, "load": load, "rmdir": rmdir},
    }
    for name, members in stand_in.items():
        sys.modules[name] = types.ModuleType(name)
        vars(sys.modules[name]).update(members)
    spec = importlib.util.spec_from_file_location("recipe", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module.Pelkraft()


def create(recipe, work):
    """The steps of a package's making, in the order and with the folders that each one has."""
    recipe.recipe_folder = os.path.join(source_dir, "packaging", "conan")
    for name in ("export_sources", "generators", "build", "package"):
        setattr(recipe, name + "_folder", os.path.join(work, name))
        os.makedirs(os.path.join(work, name))
    recipe.set_version()
    recipe.export_sources()
    # From here on the recipe is a copy in a folder of its own, and so are its sources.
    recipe.recipe_folder = os.path.join(work, "export")
    recipe.source_folder = recipe.export_sources_folder
    recipe.layout()
    recipe.requirements()
    recipe.generate()
    recipe.build()
    recipe.package()
    recipe.package_info()


def check_requirements(recipe):
    assert recipe.required == [], "x86 has a shuffle of bytes"
    recipe.settings.arch = "armv8"
    recipe.requirements()
    assert recipe.required == ["simde"]


def write_targets(recipe, folder):
    """As Conan's CMakeDeps, from what package_info says alone."""
    config = recipe.cpp_info.properties["cmake_file_name"] + "Config.cmake"
    targets = {name: part.properties["cmake_target_name"]
               for name, part in recipe.cpp_info.components.items()}
    with open(os.path.join(folder, config), "w") as file:
        for name, part in recipe.cpp_info.components.items():
            paths = [os.path.join(recipe.package_folder, "lib", f"lib{lib}.so") for lib in part.libs]
            for path in paths:
                assert os.path.exists(path), path
            links = paths + [targets[other] for other in part.requires]
            file.write(f"add_library({targets[name]} INTERFACE IMPORTED)\n"
                       f"set_target_properties({targets[name]} PROPERTIES\n"
                       f"    INTERFACE_INCLUDE_DIRECTORIES \"{recipe.package_folder}/include\"\n"
                       f"    INTERFACE_COMPILE_DEFINITIONS \"{';'.join(part.defines)}\"\n"
                       f"    INTERFACE_LINK_LIBRARIES \"{';'.join(links)}\")\n")


with tempfile.TemporaryDirectory() as work:
    recipe = load_recipe(os.path.join(source_dir, "packaging", "conan", "conanfile.py"))
    create(recipe, work)
    check_requirements(recipe)
    for text in ("LICENSE", "NOTICE"):
        assert load(recipe, os.path.join(recipe.package_folder, "licenses", text)) == \
            load(recipe, os.path.join(source_dir, text)), text
    assert sorted(os.listdir(recipe.package_folder)) == ["include", "lib", "licenses"]
    write_targets(recipe, work)
    consumer = os.path.join(work, "consumer")
    run("cmake", "-S", os.path.join(here, "consumer"), "-B", consumer, "-G", "Ninja",
        f"-Dpelkraft_DIR={work}", f"-Dpelkraft_LICENSE={recipe.license}",
        f"-DCMAKE_CXX_COMPILER={compiler}")
    run("cmake", "--build", consumer)
    run(os.path.join(consumer, "consumer"))
    print(f"conan's steps make {recipe.name} {recipe.version}, and a customer of it runs")
