// The licences of what is bundled, for the end of the file that holds it.
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const modules = join(dirname(dirname(fileURLToPath(import.meta.url))), "node_modules");

// A comment with name, version and licence of these npm packages, and further notices.
export function licences(packages, ...notices) {
    const texts = packages.map((name) => {
        const { version } = JSON.parse(readFileSync(join(modules, name, "package.json"), "utf8"));
        return `${name} ${version}\n\n${readFileSync(join(modules, name, "LICENSE"), "utf8").trim()}`;
    });
    return `/*\n${[...texts, ...notices].join("\n\n----\n\n").replaceAll("*/", "* /")}\n*/\n`;
}
