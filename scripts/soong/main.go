// Does what Soong's build program does in a tree: reads the Android.bp files, resolves the modules,
// writes the commands of the build.
//
// resolve FILE...: reads these Android.bp files, with the product's variables in
// out/soong.variables, and writes out/build.ninja. Runs in the tree's root, and from the tree's
// out/, as Soong expects of its builder. Prints errors to standard error, and exits with 1.
//
// resolve --runtime: prints the modules of the C and C++ runtime that every other one needs.
package main

import (
	"fmt"
	"os"

	"android/soong/android"
	"android/soong/cc"
	_ "android/soong/etc"
	_ "android/soong/genrule"
)

const buildDirectory = "out"

func newContext() *android.Context {
	context := android.NewContext()
	context.Register()
	exportAll := func(*android.Namespace) bool { return true }
	context.SetNameInterface(android.NewNameResolver(exportAll))
	return context
}

func resolve(files []string) []error {
	config, err := android.NewConfig(".", buildDirectory, "")
	if err != nil {
		return []error{err}
	}
	context := newContext()
	if _, errs := context.ParseFileList(".", files, config); len(errs) > 0 {
		return errs
	}
	if _, errs := context.ResolveDependencies(config); len(errs) > 0 {
		return errs
	}
	if _, errs := context.PrepareBuildActions(config); len(errs) > 0 {
		return errs
	}
	return write(context)
}

func write(context *android.Context) []error {
	file, err := os.Create(buildDirectory + "/build.ninja")
	if err != nil {
		return []error{err}
	}
	if err := context.WriteBuildFile(file); err != nil {
		return []error{err}
	}
	if err := file.Close(); err != nil {
		return []error{err}
	}
	return nil
}

func main() {
	if len(os.Args) == 2 && os.Args[1] == "--runtime" {
		fmt.Print(cc.GatherRequiredDepsForTest(android.Android))
		return
	}
	errs := resolve(os.Args[1:])
	for _, err := range errs {
		fmt.Fprintln(os.Stderr, err)
	}
	if len(errs) > 0 {
		os.Exit(1)
	}
}
