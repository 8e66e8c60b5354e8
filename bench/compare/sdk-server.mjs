// The smallest MCP server that the public TypeScript SDK makes. The low-level class starts faster than McpServer,
// and there is no tool, so nothing here is slower than it need be.
import { Server } from "@modelcontextprotocol/sdk/server/index.js";
import { StdioServerTransport } from "@modelcontextprotocol/sdk/server/stdio.js";

await new Server({ name: "smallest", version: "1.0.0" }, { capabilities: {} }).connect(new StdioServerTransport());
